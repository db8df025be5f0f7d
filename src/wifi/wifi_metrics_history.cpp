#include "wifi/wifi_metrics_history.h"

#include <cmath>

namespace netvane::wifi {
namespace {

std::optional<double> magnitude(std::optional<int> dbm)
{
    return dbm ? std::optional(std::fabs(double(*dbm))) : std::nullopt;
}

/// True when the series changed.
bool addTo(WiFiMetricsHistory::Series& series, std::chrono::system_clock::time_point now,
    std::optional<double> value)
{
    if (!value || (series.size() >= 2 && series.back().value == *value))
        return false;
    probes::appendBounded(
        series, {.timestamp = now, .value = *value}, WiFiMetricsHistory::maxHistory);
    return true;
}

} // namespace

WiFiMetricsHistory::WiFiMetricsHistory(const base::Clock& clock)
    : m_clock(clock)
{
}

void WiFiMetricsHistory::addDataPoint(
    std::optional<int> linkRate, std::optional<int> signal, std::optional<int> noise)
{
    const auto now = m_clock.now();
    if (addTo(m_linkRateHistory, now, linkRate))
        Q_EMIT linkRateHistoryChanged();
    if (addTo(m_signalHistory, now, magnitude(signal)))
        Q_EMIT signalHistoryChanged();
    if (addTo(m_noiseHistory, now, magnitude(noise)))
        Q_EMIT noiseHistoryChanged();
}

} // namespace netvane::wifi
