#include "timeline/facts.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace netvane::timeline {
namespace {

using Values = std::vector<double>;

std::optional<double> quantile(Values values, double share)
{
    if (values.empty())
        return {};
    const auto at = values.begin() + std::ptrdiff_t(double(values.size() - 1) * share);
    std::ranges::nth_element(values, at);
    return *at;
}

PathFigures figuresOf(const std::vector<Minute>& minutes, PathFigures Minute::*path)
{
    Values medians;
    Values far;
    Values losses;
    for (const auto& minute : minutes) {
        const auto& figures = minute.*path;
        if (figures.medianMs)
            medians.push_back(*figures.medianMs);
        if (figures.farMs)
            far.push_back(*figures.farMs);
        if (figures.lossPercent)
            losses.push_back(*figures.lossPercent);
    }
    PathFigures whole {
        .medianMs = quantile(std::move(medians), 0.5), .farMs = quantile(std::move(far), 0.95)};
    if (!losses.empty())
        whole.lossPercent
            = std::accumulate(losses.begin(), losses.end(), 0.0) / double(losses.size());
    return whole;
}

Week weekOf(const std::vector<Minute>& minutes)
{
    Week week;
    std::array<std::array<std::array<int, verdict::kCauseCount>, 24>, 7> culprits {};
    // The local time of a whole hour is that of its minutes, but for zones of half an hour.
    constexpr Milliseconds kStretch = 15 * 60'000;
    Milliseconds stretch = -1;
    size_t day = 0;
    size_t hour = 0;
    for (const auto& minute : minutes) {
        if (!minute.cause)
            continue;
        if (stretch < 0 || minute.at < stretch || minute.at >= stretch + kStretch) {
            stretch = std::floor(minute.at / kStretch) * kStretch;
            const auto local = QDateTime::fromMSecsSinceEpoch(qint64(stretch));
            day = size_t(local.date().dayOfWeek() - 1);
            hour = size_t(local.time().hour());
        }
        auto& known = week.at(day).at(hour);
        ++known.minutes;
        if (minute.severity < verdict::Severity::Poor)
            continue;
        ++known.badMinutes;
        auto& counts = culprits.at(day).at(hour);
        const auto own = size_t(*minute.cause);
        if (++counts.at(own) >= counts.at(size_t(known.culprit)))
            known.culprit = *minute.cause;
    }
    return week;
}

} // namespace

ProviderFacts factsOf(const std::vector<Minute>& minutes, std::vector<Outage> outages,
    Milliseconds from, Milliseconds to)
{
    return {.from = from,
        .to = to,
        .measuredHours = double(minutes.size()) / 60,
        .router = figuresOf(minutes, &Minute::router),
        .line = figuresOf(minutes, &Minute::line),
        .internet = figuresOf(minutes, &Minute::internet),
        .outages = std::move(outages),
        .week = weekOf(minutes)};
}

} // namespace netvane::timeline
