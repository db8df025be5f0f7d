#pragma once

#include "probes/history.h"

#include <QList>
#include <QString>
#include <QtQmlIntegration>

#include <vector>

namespace netvane::ui {

/// The graph of a metric card: its values, the range that its height stands for, and a sentence on
/// them. The range is never narrower than what matters to a user. Else small noise would fill the
/// height, and a constant loss would look like no loss.
struct MetricGraph {
    Q_GADGET
    QML_VALUE_TYPE(metricGraph)
    Q_PROPERTY(bool hasLine READ hasLine)
    Q_PROPERTY(QString summary READ summary)

public:
    /// From 0 to the largest value, or to `leastTop` where that is more.
    static MetricGraph fromZero(
        const QList<double>& values, double leastTop, int decimals, const QString& unit);
    /// Around the values, at least 20 dB high. The points hold magnitudes, 58 for -58 dBm; the
    /// graph shows the dBm themselves, so that a stronger signal is higher.
    static MetricGraph ofDbm(const std::vector<probes::MetricDataPoint>& magnitudes);

    /// Two values make a line.
    bool hasLine() const { return values.size() > 1; }
    /// The last, the lowest and the highest value with their unit.
    QString summary() const;
    bool operator==(const MetricGraph&) const = default;

    QList<double> values; ///< finite, oldest first
    double bottom = 0; ///< the value at the lower edge
    double top = 1; ///< the value at the upper edge; more than `bottom`
    int decimals = 0;
    QString unit; ///< with a space before it, where one belongs there
};

/// The values without their times, which no graph draws.
QList<double> valuesOf(const std::vector<probes::MetricDataPoint>& points);

} // namespace netvane::ui
