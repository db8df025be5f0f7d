#include "ui/state/metric_card_content.h"

#include <algorithm>
#include <iterator>

namespace netvane::ui {

QList<double> seriesValues(const std::vector<probes::MetricDataPoint>& points)
{
    QList<double> values;
    std::ranges::transform(points, std::back_inserter(values), &probes::MetricDataPoint::value);
    return values;
}

} // namespace netvane::ui
