#include "timeline/outages.h"

#include "insights/markdown_name.h"
#include "insights/verdict_text.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::timeline {
namespace {

using verdict::Segment;

constexpr size_t kMostListed = 200; // pages get read by people

QString formatted(Milliseconds at, const QString& format)
{
    return QLocale::c().toString(QDateTime::fromMSecsSinceEpoch(qint64(at)), format);
}

bool isBehindTheRouter(const Outage& outage)
{
    const Segment segment = verdict::segmentOf(outage.cause);
    return segment == Segment::Line || segment == Segment::Internet || segment == Segment::Dns;
}

QString figuresText(const QString& name, const PathFigures& figures)
{
    const auto number = [](std::optional<double> value, int decimals, const QString& unit) {
        return value ? QString::number(*value, 'f', decimals) + unit : u"not measured"_s;
    };
    return u"| %1 | %2 | %3 | %4 |\n"_s.arg(name, number(figures.medianMs, 0, u" ms"_s),
        number(figures.farMs, 0, u" ms"_s), number(figures.lossPercent, 1, u" %"_s));
}

QString outageRows(const std::vector<Outage>& outages, Milliseconds now)
{
    QString rows;
    for (size_t i = outages.size() - std::min(outages.size(), kMostListed); i < outages.size();
         ++i) {
        const auto& outage = outages[i];
        rows += u"| %1 | %2 | %3 | %4 |\n"_s.arg(timeText(outage.from, true),
            outage.to ? timeText(*outage.to, true) : u"not over yet"_s,
            durationText(outage.to.value_or(now) - outage.from), insights::causeName(outage.cause));
    }
    return rows;
}

QString times(size_t count)
{
    return count == 1 ? u"once"_s : u"%1 times"_s.arg(count);
}

QString summary(const ProviderFacts& facts, const std::vector<Outage>& ofProvider)
{
    Milliseconds total = 0;
    for (const auto& outage : ofProvider)
        total += outage.to.value_or(facts.to) - outage.from;
    QString text
        = u"The connection was measured for %1 between %2 and %3. "_s
              .arg(durationText(facts.measuredHours * 3'600'000))
              .arg(formatted(facts.from, u"d MMM yyyy"_s), formatted(facts.to, u"d MMM yyyy"_s));
    text += ofProvider.empty() ? u"There was no outage behind the router. "_s
                               : u"Behind the router it was interrupted %1, %2 in all. "_s.arg(
                                   times(ofProvider.size()), durationText(total));
    const size_t others = facts.outages.size() - ofProvider.size();
    if (others > 0)
        text += u"It was also interrupted %1 inside the home; that is not listed here. "_s.arg(
            times(others));
    // The provider is the reader.
    return text + badHoursSentence(facts.week).replace(u"your"_s, u"the"_s) + u"\n\n"_s;
}

} // namespace

QString durationText(Milliseconds duration)
{
    const qint64 seconds = std::max<qint64>(0, std::llround(duration / 1000));
    if (seconds < 120)
        return u"%1 s"_s.arg(seconds);
    const qint64 minutes = (seconds + 30) / 60;
    if (minutes < 120)
        return u"%1 min"_s.arg(minutes);
    return minutes % 60 == 0 ? u"%1 h"_s.arg(minutes / 60)
                             : u"%1 h %2 min"_s.arg(minutes / 60).arg(minutes % 60);
}

QString dayText(Milliseconds at)
{
    return formatted(at, u"ddd d MMM"_s);
}

QString timeText(Milliseconds at, bool hasSeconds)
{
    return formatted(at, hasSeconds ? u"ddd d MMM, HH:mm:ss"_s : u"ddd d MMM, HH:mm"_s);
}

QString spanText(const Outage& outage)
{
    const QString begin = formatted(outage.from, u"HH:mm:ss"_s);
    if (!outage.to)
        return u"since %1"_s.arg(begin);
    const bool isSameDay
        = formatted(outage.from, u"yyyyMMdd"_s) == formatted(*outage.to, u"yyyyMMdd"_s);
    return u"%1 to %2, %3"_s.arg(begin,
        isSameDay ? formatted(*outage.to, u"HH:mm:ss"_s) : timeText(*outage.to, true),
        durationText(*outage.to - outage.from));
}

QString providerPage(const ProviderFacts& facts)
{
    std::vector<Outage> ofProvider;
    std::copy_if(facts.outages.begin(), facts.outages.end(), std::back_inserter(ofProvider),
        isBehindTheRouter);
    QString page = u"# Internet connection, %1\n\n"_s.arg(formatted(facts.to, u"d MMMM yyyy"_s));
    page += u"Made by Netvane on %1 (local time, %2).\n\n"_s.arg(timeText(facts.to),
        QDateTime::fromMSecsSinceEpoch(qint64(facts.to)).timeZoneAbbreviation());
    if (!facts.network.isEmpty())
        page += u"Network: %1\n\n"_s.arg(insights::markdownName(facts.network));
    page += summary(facts, ofProvider);
    page += u"## How the parts of the way did\n\n"
            "| Part | Median | 95 of 100 under | Lost |\n|---|---|---|---|\n"_s;
    page += figuresText(u"This computer to the router"_s, facts.router);
    page += figuresText(u"To the provider's first router"_s, facts.line);
    page += figuresText(u"To the internet"_s, facts.internet);
    if (!ofProvider.empty()) {
        page += u"\n## Outages behind the router\n\n"
                "| Begin | End | Duration | What was found |\n|---|---|---|---|\n"_s;
        page += outageRows(ofProvider, facts.to);
        if (ofProvider.size() > kMostListed)
            page += u"\nThe last %1 of %2 are listed.\n"_s.arg(kMostListed).arg(ofProvider.size());
    }
    page += u"\n## How it was measured\n\n"
            "- A program on a computer in the home asked the router, the provider's first router "
            "and a host in the internet every few seconds, as long as the computer was awake.\n"
            "- The routers were asked by UDP datagrams with a hop limit of 1 and 2, which they "
            "answer by an ICMP message, and the user's router by TCP handshakes, too; the host in "
            "the internet was asked by TCP handshakes.\n"
            "- A fault counts as one behind the router only while the router itself answered.\n"
            "- A minute is bad when the program found that the connection worked badly or not at "
            "all.\n"_s;
    return page;
}

} // namespace netvane::timeline
