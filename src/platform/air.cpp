#include "platform/air.h"

#include <algorithm>

namespace netvane::platform {
namespace {

using Count = std::optional<std::uint64_t>;

/// Absent where it began anew.
Count growth(const Count& before, const Count& after)
{
    return before && after && *after >= *before ? Count(*after - *before) : std::nullopt;
}

/// Drivers round: a share may come out a little above the whole.
std::optional<double> shareOf(const Count& part, const Count& whole)
{
    if (!part || whole.value_or(0) == 0)
        return {};
    return std::min(1.0, double(*part) / double(*whole));
}

} // namespace

std::optional<double> busyShare(const AirSurvey& before, const AirSurvey& after)
{
    if (before == AirSurvey {})
        return shareOf(after.busyMs, after.activeMs);
    return shareOf(growth(before.busyMs, after.busyMs), growth(before.activeMs, after.activeMs));
}

AirChange changeBetween(const AirReading& before, const AirReading& after)
{
    if (!before.link || !after.link || before.link->bssid != after.link->bssid)
        return {};
    const std::chrono::duration<double, std::ratio<60>> minutes = after.at - before.at;
    const auto perMinute = [&](Count LinkCounters::*count) -> std::optional<double> {
        const auto more = growth(before.link->counters.*count, after.link->counters.*count);
        return more && minutes.count() > 0 ? std::optional(double(*more) / minutes.count())
                                           : std::nullopt;
    };
    const auto share
        = [&, &from = before.link->survey, &to = after.link->survey](Count AirSurvey::*time) {
              return shareOf(growth(from.*time, to.*time), growth(from.activeMs, to.activeMs));
          };
    AirChange change {
        .sentPerMinute = perMinute(&LinkCounters::sentPackets),
        .retriesPerMinute = perMinute(&LinkCounters::retries),
        .failuresPerMinute = perMinute(&LinkCounters::failed),
        .lostBeaconsPerMinute = perMinute(&LinkCounters::beaconsLost),
        .busy = share(&AirSurvey::busyMs),
        .transmit = share(&AirSurvey::transmitMs),
        .ownReceive = share(&AirSurvey::ownReceiveMs),
    };
    if (change.busy && change.transmit && change.ownReceive)
        change.others = std::max(0.0, *change.busy - *change.transmit - *change.ownReceive);
    return change;
}

} // namespace netvane::platform
