#include "report/report_options.h"

#include <QCommandLineParser>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {
namespace {

// A day; whoever asks for more has made a mistake.
constexpr int kMaximumSeconds = 86'400;

Message misuse(const QString& problem)
{
    return {problem + u"\nTry 'netvane-report --help'.\n"_s, 2};
}

/// Absent without the option; a text if it makes no sense.
std::variant<std::optional<std::chrono::seconds>, QString> secondsOf(
    const QCommandLineParser& parser, const QString& name)
{
    if (!parser.isSet(name))
        return std::optional<std::chrono::seconds>();
    bool isNumber = false;
    const int count = parser.value(name).toInt(&isNumber);
    if (!isNumber || count < 1 || count > kMaximumSeconds)
        return u"--%1 wants a number from 1 to %2."_s.arg(name).arg(kMaximumSeconds);
    return std::optional(std::chrono::seconds(count));
}

/// "7d", "24h", "90m"; at most ten years. Absent for anything else.
std::optional<std::chrono::seconds> spanOf(const QString& text)
{
    constexpr int kMost = 100'000;
    bool isNumber = false;
    const int count = text.chopped(text.isEmpty() ? 0 : 1).toInt(&isNumber);
    if (!isNumber || count < 1 || count > kMost)
        return {};
    switch (text.back().unicode()) {
    case u'd':
        return count <= 3650 ? std::optional(std::chrono::days(count)) : std::nullopt;
    case u'h':
        return std::chrono::hours(count);
    case u'm':
        return std::chrono::minutes(count);
    default:
        return {};
    }
}

const std::pair<QString, Outlet> kOutlets[]
    = {{u"verdict"_s, Outlet::Verdict}, {u"json"_s, Outlet::Json}, {u"watch"_s, Outlet::Watch},
        {u"prometheus"_s, Outlet::Prometheus}, {u"record"_s, Outlet::Record}};

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        u"Looks at the Wi-Fi and the way to the internet for a moment and prints a report."_s);
    const QList<QCommandLineOption> options = {
        {u"verdict"_s,
            u"Say who is to blame for a bad connection, and end with 0 if nobody is, 10 for this "
            "computer, 11 for the radio, 12 for the router, 13 for the line, 14 for DNS, 15 for a "
            "log-in page, 16 for the internet, 20 if that is not sure."_s},
        {u"json"_s, u"Print the verdict, what it rests on and the air as a JSON object."_s},
        {u"watch"_s, u"Print such an object a line, now and at each change of the verdict."_s},
        {u"interval"_s, u"With --watch: every N seconds, too."_s, u"N"_s},
        {u"prometheus"_s, u"Print metrics for node_exporter's textfile collector."_s},
        {u"air"_s,
            u"Print what the radio and the access points in reach tell: the link in detail, "
            u"adapters, "
            "networks, channels; as an object with --json. Starts no scan."_s},
        {u"replay"_s, u"With --air: of a recording instead."_s, u"FILE"_s},
        {u"record"_s,
            u"Write what the kernel says of the radio for a minute to FILE, without names and "
            "addresses, to improve Netvane."_s,
            u"FILE"_s},
        {u"trace"_s,
            u"Print the routers on the way to HOST, up to 30, and end with 20 if it does not "
            u"answer; "
            "as an object with --json."_s,
            u"HOST"_s},
        {u"history"_s,
            u"Print what Netvane remembers of the last SPAN (7d, 24h, 90m), as a page for a "
            u"provider; "
            "with --json or --csv all of it."_s,
            u"SPAN"_s},
        {u"csv"_s, u"With --history: the minutes as a table."_s},
        {u"seconds"_s, u"Measure for N seconds."_s, u"N"_s},
        {u"output"_s, u"Write to FILE instead of standard output."_s, u"FILE"_s},
        {u"redact"_s, u"Put placeholders in the place of network names and of addresses."_s},
        {u"speed-test"_s, u"Test the speed, too; transfers about 10 MB."_s},
        {u"help"_s, u"Show this text."_s},
        {u"version"_s, u"Show the version."_s},
    };
    parser.addOptions(options);
}

} // namespace

std::variant<ReportOptions, Message> parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments))
        return misuse(parser.errorText());
    if (parser.isSet(u"help"_s))
        return Message {parser.helpText()};
    if (parser.isSet(u"version"_s))
        return Message {u"netvane-report "_s + QStringLiteral(NETVANE_VERSION) + u'\n'};
    if (!parser.positionalArguments().isEmpty())
        return misuse(u"Unexpected argument '%1'."_s.arg(parser.positionalArguments().first()));
    ReportOptions options {
        .redact = parser.isSet(u"redact"_s), .speedTest = parser.isSet(u"speed-test"_s)};
    QStringList chosen;
    for (const auto& [name, outlet] : kOutlets) {
        if (!parser.isSet(name))
            continue;
        chosen.append(u"--"_s + name);
        options.outlet = outlet;
    }
    for (const auto& [name, outlet] : {std::pair(u"trace"_s, Outlet::Trace),
             {u"history"_s, Outlet::History}, {u"air"_s, Outlet::Air}}) {
        if (!parser.isSet(name))
            continue;
        options.asJson = chosen.removeOne(u"--json"_s);
        chosen.append(u"--"_s + name);
        options.outlet = outlet;
    }
    options.traceHost = parser.value(u"trace"_s);
    options.file = parser.value(parser.isSet(u"record"_s) ? u"record"_s : u"replay"_s);
    if (parser.isSet(u"replay"_s) && options.outlet != Outlet::Air)
        return misuse(u"--replay goes with --air only."_s);
    if (parser.isSet(u"output"_s) && options.outlet == Outlet::Record)
        return misuse(u"--record names its file itself."_s);
    options.asCsv = parser.isSet(u"csv"_s);
    if (options.asCsv && (options.outlet != Outlet::History || options.asJson))
        return misuse(u"--csv goes with --history only, and not with --json."_s);
    if (const auto span = spanOf(parser.value(u"history"_s)))
        options.history = *span;
    else if (options.outlet == Outlet::History)
        return misuse(u"--history wants a time such as 7d, 24h or 90m."_s);
    if (chosen.size() > 1)
        return misuse(u"%1 exclude each other."_s.arg(chosen.join(u" and "_s)));
    if ((options.outlet == Outlet::Trace || options.outlet == Outlet::History)
        && parser.isSet(u"seconds"_s))
        return misuse(u"--seconds does not go with %1."_s.arg(chosen.constLast()));
    if (options.speedTest && !chosen.isEmpty())
        return misuse(u"--speed-test goes with the report only."_s);
    if (parser.isSet(u"interval"_s) && options.outlet != Outlet::Watch)
        return misuse(u"--interval goes with --watch only."_s);
    if (parser.isSet(u"output"_s) && options.outlet == Outlet::Watch)
        return misuse(u"--watch prints to standard output only."_s);
    if (parser.isSet(u"output"_s))
        options.output = parser.value(u"output"_s);
    for (const auto& [name, field] : {std::pair(u"seconds"_s, &ReportOptions::duration),
             {u"interval"_s, &ReportOptions::interval}}) {
        const auto seconds = secondsOf(parser, name);
        if (const auto* problem = std::get_if<QString>(&seconds))
            return misuse(*problem);
        options.*field = std::get<0>(seconds);
    }
    return options;
}

} // namespace netvane::report
