#include "ui/state/performance_state.h"

#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "ui/state/dashboard_readings.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

PerformanceState::PerformanceState(const DashboardReadings& readings,
    const probes::PingService& routerPingService, const probes::PingService& internetPingService)
    : m_readings(readings)
    , m_router({.title = u"Router"_s,
                   .subtitle = u"Local Network"_s,
                   .icon = u"antenna.radiowaves.left.and.right"_s},
          routerPingService.metrics())
    , m_internet({.title = u"Internet"_s,
                     .subtitle = u"Cloudflare (%1)"_s.arg(probes::kInternetTarget),
                     .icon = u"globe"_s},
          internetPingService.metrics())
{
    connect(
        &m_readings, &DashboardReadings::routerMetricsChanged, this, &PerformanceState::refresh);
    connect(
        &m_readings, &DashboardReadings::internetMetricsChanged, this, &PerformanceState::refresh);
    refresh();
}

void PerformanceState::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown)
        return;
    Q_EMIT isShownChanged();
    refresh();
}

void PerformanceState::refresh()
{
    m_router.show(m_readings.routerMetrics(), m_isShown);
    m_internet.show(m_readings.internetMetrics(), m_isShown);
}

} // namespace netvane::ui
