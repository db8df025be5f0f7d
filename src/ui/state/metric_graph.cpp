#include "ui/state/metric_graph.h"

#include "base/decimal_text.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

constexpr double kLeastDecibels = 20;

} // namespace

MetricGraph MetricGraph::fromZero(
    const QList<double>& values, double leastTop, int decimals, const QString& unit)
{
    MetricGraph graph;
    graph.values = values;
    graph.top = std::ranges::max(values + QList {leastTop});
    graph.decimals = decimals;
    graph.unit = unit;
    return graph;
}

MetricGraph MetricGraph::ofDbm(const std::vector<probes::MetricDataPoint>& magnitudes)
{
    MetricGraph graph;
    graph.unit = u" dBm"_s;
    for (const auto& point : magnitudes)
        graph.values.append(-point.value);
    if (graph.values.isEmpty())
        return graph;
    const auto [lowest, highest] = std::ranges::minmax(graph.values);
    const double margin = std::max(0.0, kLeastDecibels - (highest - lowest)) / 2;
    graph.bottom = lowest - margin;
    graph.top = highest + margin;
    return graph;
}

QString MetricGraph::summary() const
{
    if (!hasLine())
        return u"No history yet"_s;
    const auto [lowest, highest] = std::ranges::minmax(values);
    const auto text = [this](double value) { return base::fixedDecimal(value, decimals) + unit; };
    return u"Last %1, lowest %2, highest %3"_s.arg(
        text(values.last()), text(lowest), text(highest));
}

QList<double> valuesOf(const std::vector<probes::MetricDataPoint>& points)
{
    QList<double> values;
    std::ranges::transform(points, std::back_inserter(values), &probes::MetricDataPoint::value);
    return values;
}

} // namespace netvane::ui
