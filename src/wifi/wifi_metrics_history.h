#pragma once

#include "base/clock.h"
#include "probes/history.h"

#include <QObject>

#include <optional>
#include <vector>

namespace netvane::wifi {

/// Three short series of the link for the graphs on its cards, oldest first. Main thread.
class WiFiMetricsHistory : public QObject {
    Q_OBJECT

public:
    using Series = std::vector<probes::MetricDataPoint>;
    static constexpr size_t maxHistory = 10; ///< points in each series

    /// `clock` outlives this.
    explicit WiFiMetricsHistory(const base::Clock& clock);

    /// Mbps.
    const Series& linkRateHistory() const { return m_linkRateHistory; }
    /// Magnitudes: 58 stands for -58 dBm.
    const Series& signalHistory() const { return m_signalHistory; }
    const Series& noiseHistory() const { return m_noiseHistory; }

    /// Adds the values of one snapshot, in Mbps and dBm. An absent or repeated value adds no point,
    /// but a series may begin with two equal points.
    void addDataPoint(
        std::optional<int> linkRate, std::optional<int> signal, std::optional<int> noise);

Q_SIGNALS:
    void linkRateHistoryChanged();
    void signalHistoryChanged();
    void noiseHistoryChanged();

private:
    const base::Clock& m_clock;
    Series m_linkRateHistory;
    Series m_signalHistory;
    Series m_noiseHistory;
};

} // namespace netvane::wifi
