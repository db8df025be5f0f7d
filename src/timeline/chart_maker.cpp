#include "timeline/chart_maker.h"

#include <algorithm>
#include <cmath>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace netvane::timeline {
namespace {

using Value = std::function<std::optional<double>(const Minute&)>;
using Place = std::vector<Minute>::const_iterator;

struct LaneSource {
    QString name;
    QString unit;
    Lane::Kind kind = Lane::Kind::Delay;
    Value value;
    Value far; ///< of delays
};

std::vector<LaneSource> laneSources()
{
    const auto delay = [](const QString& name, PathFigures Minute::*path) {
        return LaneSource {name, u"ms"_s, Lane::Kind::Delay,
            [path](const Minute& minute) { return (minute.*path).medianMs; },
            [path](const Minute& minute) { return (minute.*path).farMs; }};
    };
    // The loss to the internet holds that of the way there; without it the nearest part counts.
    const auto loss = [](const Minute& minute) {
        return minute.internet.lossPercent ? minute.internet.lossPercent
            : minute.line.lossPercent      ? minute.line.lossPercent
                                           : minute.router.lossPercent;
    };
    return {delay(u"Router"_s, &Minute::router), delay(u"Line"_s, &Minute::line),
        delay(u"Internet"_s, &Minute::internet), {u"Lost"_s, u"%"_s, Lane::Kind::Loss, loss, {}},
        {u"Signal"_s, u"dBm"_s, Lane::Kind::Level, [](const Minute& m) { return m.signalDbm; }, {}},
        {u"Rate"_s, u"Mbps"_s, Lane::Kind::Level, [](const Minute& m) { return m.rateMbps; }, {}}};
}

std::vector<double> valuesOf(Place first, Place last, const Value& value)
{
    std::vector<double> values;
    for (auto minute = first; value && minute != last; ++minute) {
        if (const auto each = value(*minute))
            values.push_back(*each);
    }
    return values;
}

double median(std::vector<double>& values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::optional<LanePoint> pointOf(const LaneSource& source, Place first, Place last, Milliseconds at)
{
    auto values = valuesOf(first, last, source.value);
    if (values.empty())
        return {};
    if (source.kind != Lane::Kind::Delay) {
        double sum = 0;
        for (const double value : values)
            sum += value;
        const auto mean = float(sum / double(values.size()));
        return LanePoint {at, mean, mean};
    }
    const auto far = valuesOf(first, last, source.far);
    const auto value = float(median(values));
    return LanePoint {at, value,
        far.empty() ? value : std::max(value, float(*std::max_element(far.begin(), far.end())))};
}

/// A few spikes do not make everything else flat.
void setRange(Lane& lane)
{
    constexpr double kLeastDelay = 10;
    constexpr double kLeastLoss = 10;
    if (lane.unit == u"dBm") {
        lane.bottom = -90;
        lane.top = -30;
        return;
    }
    std::vector<float> values;
    values.reserve(lane.points.size());
    for (const auto& point : lane.points)
        values.push_back(point.far);
    if (values.empty())
        return;
    const double share = lane.kind == Lane::Kind::Delay ? 0.97 : 1.0;
    const auto high = values.begin() + std::ptrdiff_t(double(values.size() - 1) * share);
    std::nth_element(values.begin(), high, values.end());
    lane.top = roundTop(
        std::max(double(*high), lane.kind == Lane::Kind::Loss ? kLeastLoss : kLeastDelay));
}

/// The worst of the minutes; of equal ones, the first.
void addVerdict(
    std::vector<Band>& bands, Place first, Place last, const ChartRange& range, Milliseconds at)
{
    const Minute* worst = nullptr;
    for (auto minute = first; minute != last; ++minute) {
        if (minute->cause && (!worst || worst->severity < minute->severity))
            worst = &*minute;
    }
    if (!worst)
        return;
    if (!bands.empty() && bands.back().to == at && bands.back().cause == *worst->cause
        && bands.back().severity == worst->severity)
        bands.back().to += range.step;
    else
        bands.push_back({at, at + range.step, *worst->cause, worst->severity});
}

std::vector<Mark> marksOf(const Remembered& remembered)
{
    std::vector<Mark> marks = remembered.marks;
    for (const auto& spike : spikes(remembered.trips, remembered.pauses)) {
        if (spike.cause)
            marks.push_back({spike.at, *spike.cause,
                u"Internet %1 ms instead of %2 ms: %3"_s.arg(std::lround(spike.milliseconds))
                    .arg(std::lround(spike.usual))
                    .arg(*spike.cause == Mark::Kind::Roam ? u"a change of the access point"_s
                                                          : u"a scan for networks"_s)});
    }
    std::stable_sort(marks.begin(), marks.end(),
        [](const Mark& one, const Mark& other) { return one.at < other.at; });
    return marks;
}

} // namespace

Chart chartOf(const Remembered& remembered, const ChartRange& range)
{
    const auto& minutes = remembered.minutes;
    Chart chart {
        .from = range.from, .to = range.to, .step = range.step, .marks = marksOf(remembered)};
    const auto sources = laneSources();
    for (const auto& source : sources)
        chart.lanes.push_back({.name = source.name, .unit = source.unit, .kind = source.kind});
    for (auto first = minutes.begin(); first != minutes.end();) {
        const Milliseconds at = std::floor(first->at / range.step) * range.step;
        const auto last = std::find_if(first, minutes.end(),
            [&](const Minute& minute) { return minute.at >= at + range.step; });
        for (size_t i = 0; i < sources.size(); ++i) {
            if (const auto point = pointOf(sources[i], first, last, at))
                chart.lanes[i].points.push_back(*point);
        }
        addVerdict(chart.verdicts, first, last, range, at);
        first = last;
    }
    for (auto& lane : chart.lanes)
        setRange(lane);
    return chart;
}

} // namespace netvane::timeline
