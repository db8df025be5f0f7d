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

} // namespace

std::variant<ReportOptions, Message> parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Looks at the Wi-Fi and the way to the internet for a moment and prints a report."_s);
    const QCommandLineOption seconds(
        u"seconds"_s, u"Sample for N seconds instead of five rounds of probes."_s, u"N"_s);
    const QCommandLineOption output(
        u"output"_s, u"Write the report to FILE instead of standard output."_s, u"FILE"_s);
    const QCommandLineOption redact(
        u"redact"_s, u"Put placeholders in the place of the network name and of addresses."_s);
    const QCommandLineOption speedTest(
        u"speed-test"_s, u"Test the speed, too; transfers about 10 MB."_s);
    const QCommandLineOption help(u"help"_s, u"Show this text."_s);
    const QCommandLineOption version(u"version"_s, u"Show the version."_s);
    parser.addOptions({seconds, output, redact, speedTest, help, version});
    if (!parser.parse(arguments))
        return misuse(parser.errorText());
    if (parser.isSet(help))
        return Message {parser.helpText()};
    if (parser.isSet(version))
        return Message {u"netvane-report "_s + QStringLiteral(NETVANE_VERSION) + u'\n'};
    if (!parser.positionalArguments().isEmpty())
        return misuse(u"Unexpected argument '%1'."_s.arg(parser.positionalArguments().first()));
    ReportOptions options;
    options.redact = parser.isSet(redact);
    options.speedTest = parser.isSet(speedTest);
    if (parser.isSet(output))
        options.output = parser.value(output);
    if (parser.isSet(seconds)) {
        bool isNumber = false;
        const int count = parser.value(seconds).toInt(&isNumber);
        if (!isNumber || count < 1 || count > kMaximumSeconds)
            return misuse(u"--seconds wants a number from 1 to %1."_s.arg(kMaximumSeconds));
        options.duration = std::chrono::seconds(count);
    }
    return options;
}

} // namespace netvane::report
