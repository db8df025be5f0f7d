#include "ui/state/recommendations_state.h"

#include "insights/recommendations.h"
#include "ui/state/dashboard_readings.h"

namespace netvane::ui {

RecommendationsState::RecommendationsState(const DashboardReadings& readings)
    : m_readings(readings)
{
    for (const auto changed : {&DashboardReadings::currentWiFiChanged,
             &DashboardReadings::routerMetricsChanged, &DashboardReadings::internetMetricsChanged})
        connect(&m_readings, changed, this, &RecommendationsState::refresh);
    refresh();
}

void RecommendationsState::refresh()
{
    const QStringList advice = insights::recommendations({.wifiInfo = m_readings.currentWiFi(),
        .routerMetrics = m_readings.routerMetrics(),
        .internetMetrics = m_readings.internetMetrics()});
    if (m_recommendations == advice)
        return;
    m_recommendations = advice;
    Q_EMIT recommendationsChanged();
}

} // namespace netvane::ui
