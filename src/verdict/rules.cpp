#include "verdict/rules.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {

QString inMs(double milliseconds)
{
    return QString::number(milliseconds, 'f', milliseconds < 1 ? 1 : 0) + u" ms"_s;
}

QString inSentence(const QString& name)
{
    constexpr qsizetype kLongest = 20;
    return name.size() <= kLongest ? name : name.first(kLongest - 1) + u'…';
}

EvidenceItem item(const Facts& facts, const QString& name, double value, const QString& unit,
    TimePoint at, const QString& text)
{
    return {.name = name,
        .value = std::round(value * 10) / 10,
        .unit = unit,
        .ageSeconds = std::round(facts.ageOf(at) * 10) / 10,
        .text = text};
}

void addLatency(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Track& track)
{
    if (track.medianMs && track.lastAnswer)
        finding.evidence.push_back(item(facts, name, *track.medianMs, u"ms"_s, *track.lastAnswer,
            u"%1 answers in %2"_s.arg(place, inMs(*track.medianMs))));
}

void addSilence(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Track& track)
{
    if (track.asked > 0)
        finding.evidence.push_back(
            item(facts, name, track.unanswered, u"packets"_s, facts.evidence.now,
                u"%1 left the last %2 packets unanswered"_s.arg(place).arg(track.unanswered)));
}

void addLoss(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Loss& loss)
{
    if (loss.packets > 0)
        finding.evidence.push_back(item(facts, name, loss.percent(), u"%"_s, facts.evidence.now,
            u"%1: %2 of %3 packets lost"_s.arg(place).arg(loss.lost).arg(loss.packets)));
}

} // namespace netvane::verdict
