#include "timeline/chart.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::timeline {
namespace {

constexpr Milliseconds kMinute = 60'000;
constexpr Milliseconds kHour = 60 * kMinute;
constexpr Milliseconds kDay = 24 * kHour;

/// The shortest step that needs no more ticks; whole days from a day on.
Milliseconds tickStep(Milliseconds span, int most)
{
    for (const Milliseconds step : {kMinute, 2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute,
             30 * kMinute, kHour, 2 * kHour, 3 * kHour, 6 * kHour, 12 * kHour, kDay, 2 * kDay}) {
        if (span / step <= most)
            return step;
    }
    return std::ceil(span / most / (5 * kDay)) * 5 * kDay;
}

QString tickText(const QDateTime& time, bool hasTime)
{
    const bool isMidnight = time.time().hour() == 0 && time.time().minute() == 0;
    return QLocale::c().toString(time, hasTime && !isMidnight ? u"HH:mm"_s : u"ddd d MMM"_s);
}

} // namespace

const LanePoint* pointAt(const Lane& lane, Milliseconds moment, Milliseconds step)
{
    const auto after = std::upper_bound(lane.points.begin(), lane.points.end(), moment,
        [](Milliseconds time, const LanePoint& point) { return time < point.at; });
    if (after == lane.points.begin())
        return nullptr;
    const auto& point = *std::prev(after);
    return moment < point.at + step ? &point : nullptr;
}

const Band* bandAt(const Chart& chart, Milliseconds moment)
{
    const auto after = std::upper_bound(chart.verdicts.begin(), chart.verdicts.end(), moment,
        [](Milliseconds time, const Band& band) { return time < band.from; });
    if (after == chart.verdicts.begin())
        return nullptr;
    const auto& band = *std::prev(after);
    return moment < band.to ? &band : nullptr;
}

bool isShown(Mark::Kind kind, Milliseconds span)
{
    switch (kind) {
    case Mark::Kind::Scan:
        return span <= 3 * kHour;
    case Mark::Kind::Roam:
        return span <= 2 * kDay;
    case Mark::Kind::System:
        return span <= 8 * kDay;
    case Mark::Kind::Link:
    case Mark::Kind::Network:
        break;
    }
    return true;
}

std::vector<Mark> marksNear(const Chart& chart, Milliseconds moment, Milliseconds span)
{
    constexpr double kNearShare = 0.005;
    const Milliseconds reach = span * kNearShare;
    std::vector<Mark> near;
    std::copy_if(
        chart.marks.begin(), chart.marks.end(), std::back_inserter(near), [&](const Mark& mark) {
            return std::abs(mark.at - moment) <= reach && isShown(mark.kind, span);
        });
    return near;
}

double roundTop(double largest)
{
    const double power = std::pow(10, std::floor(std::log10(std::max(largest, 1e-6))));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (largest <= factor * power)
            return factor * power;
    }
    return 10 * power;
}

std::vector<Tick> ticks(Milliseconds from, Milliseconds to, int most)
{
    std::vector<Tick> all;
    if (!(to > from) || most < 1)
        return all;
    const Milliseconds step = tickStep(to - from, most);
    // Days are counted by the calendar: not each has 24 hours.
    QDate day = QDateTime::fromMSecsSinceEpoch(qint64(from)).date();
    const qint64 days = std::max<qint64>(1, qint64(step / kDay));
    if (days > 1)
        day = day.addDays(-(day.toJulianDay() % days));
    for (; day.startOfDay().toMSecsSinceEpoch() <= qint64(to); day = day.addDays(days)) {
        const auto next = Milliseconds(day.addDays(days).startOfDay().toMSecsSinceEpoch());
        for (auto at = Milliseconds(day.startOfDay().toMSecsSinceEpoch()); at < next && at <= to;
             at += std::min(step, kDay * double(days))) {
            if (at >= from)
                all.push_back(
                    {at, tickText(QDateTime::fromMSecsSinceEpoch(qint64(at)), step < kDay)});
            if (step >= kDay)
                break;
        }
    }
    return all;
}

} // namespace netvane::timeline
