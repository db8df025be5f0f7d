#include "ui/state/dashboard_state.h"

#include "platform/platform.h"
#include "services/services.h"

namespace netvane::ui {

DashboardState::DashboardState(const services::Services& services, probes::PingService* loadProbe)
    : m_readings(services)
    , m_networkInfo(m_readings)
    , m_locationPermission(
          m_readings, *services.locationPermissionService, *services.platform.urlOpener)
    , m_errorMessage(m_readings)
    , m_captivePortal(m_readings, *services.captivePortalService)
    , m_wifiMetrics(m_readings, *services.platform.clock)
    , m_performance(m_readings, *services.routerPingService, *services.internetPingService)
    , m_connectionSummary(m_readings, *services.dnsService)
    , m_dns(*services.dnsService)
    , m_channelAnalysis(*services.channelAnalysisService, *services.locationPermissionService,
          *services.platform.networkScanner, *services.platform.urlOpener, *services.platform.clock)
    , m_speedTest(*services.speedTestService, loadProbe, *services.platform.clock)
    , m_traceroute(*services.tracerouteService)
    , m_recommendations(m_readings)
{
}

} // namespace netvane::ui
