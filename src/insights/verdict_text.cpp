#include "insights/verdict_text.h"

#include <QStringList>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::insights {
namespace {

using verdict::Cause;

// In the order of the enumerators.
constexpr std::array<QLatin1StringView, verdict::kCauseCount> kCauseNames = {
    "Everything works"_L1,
    "Not enough is known yet"_L1,
    "There is no network adapter"_L1,
    "Wi-Fi is switched off"_L1,
    "The network gives no address"_L1,
    "There is no route to the internet"_L1,
    "The VPN passes nothing on"_L1,
    "Not connected to a network"_L1,
    "Still signing in"_L1,
    "The network refuses this computer"_L1,
    "The Wi-Fi signal is weak"_L1,
    "Packets are lost on the air"_L1,
    "The Wi-Fi channel is busy"_L1,
    "Wi-Fi power saving delays packets"_L1,
    "A program scans for networks"_L1,
    "Wi-Fi changes between access points"_L1,
    "The access point is gone"_L1,
    "The router does not answer"_L1,
    "The router is slow"_L1,
    "The router loses packets"_L1,
    "The line to the provider is down"_L1,
    "The line to the provider is slow"_L1,
    "The line to the provider loses packets"_L1,
    "A transfer fills the line"_L1,
    "DNS does not answer"_L1,
    "DNS is slow"_L1,
    "DNS gives false answers"_L1,
    "The network wants a log-in"_L1,
    "Large packets are lost"_L1,
    "IPv6 does not work"_L1,
    "Only one host does not answer"_L1,
};

QString chainText(const std::vector<verdict::ChainLink>& chain)
{
    QStringList links;
    for (const auto& link : chain)
        links.append(link.figure.isEmpty()
                ? u"%1: %2"_s.arg(link.name, link.word)
                : u"%1: %2, %3"_s.arg(link.name, link.word, link.figure));
    return links.join(u'\n');
}

} // namespace

QDateTime localTime(std::chrono::system_clock::time_point time)
{
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

QString causeName(Cause cause)
{
    return kCauseNames.at(size_t(cause));
}

std::vector<ConsideredCause> consideredCauses(const verdict::Verdict& verdict)
{
    constexpr double kPossible = 0.6;
    constexpr double kUnlikely = 0.3;
    std::vector<ConsideredCause> causes;
    for (const auto& [cause, certainty] : verdict.others) {
        if (cause == Cause::Healthy || cause == Cause::Unsure)
            continue;
        causes.push_back({causeName(cause),
            certainty >= kPossible       ? u"possible"_s
                : certainty >= kUnlikely ? u"less likely"_s
                                         : u"unlikely"_s});
    }
    return causes;
}

QString figureText(const verdict::EvidenceItem& item)
{
    QString number = QString::number(item.value, 'f', 1);
    if (number.endsWith(u".0"_s))
        number.chop(2);
    if (item.unit.isEmpty())
        return number;
    return number + u' '
        + (item.unit == u"packets"_s && number == u"1"_s ? u"packet"_s : item.unit);
}

QString verdictText(const verdict::Verdict& verdict, std::chrono::duration<double> passed)
{
    QStringList parts {verdict.sentence};
    if (!verdict.advice.isEmpty())
        parts.append(verdict.advice);
    if (verdict.since.time_since_epoch().count() > 0)
        parts.append(u"Since "_s + localTime(verdict.since).toString(u"yyyy-MM-dd HH:mm:ss"_s));
    if (!verdict.chain.empty())
        parts.append(chainText(verdict.chain));
    if (!verdict.evidence.empty()) {
        QStringList lines {u"Evidence:"_s};
        for (const auto& item : verdict.evidence)
            lines.append(u"- %1 (%2, %3 s ago)"_s.arg(item.text, figureText(item),
                QString::number(qRound(item.ageSeconds + passed.count()))));
        parts.append(lines.join(u'\n'));
    }
    if (const auto causes = consideredCauses(verdict); !causes.empty()) {
        QStringList lines {u"Also considered:"_s};
        for (const auto& [name, certainty] : causes)
            lines.append(u"- %1: %2"_s.arg(name, certainty));
        parts.append(lines.join(u'\n'));
    }
    return parts.join(u"\n\n"_s) + u'\n';
}

} // namespace netvane::insights
