#include "ui/state/dashboard_state.h"

namespace netvane::ui {

DashboardState::DashboardState(const DashboardServices& services, probes::PingService* loadProbe)
    : m_readings({services.wifiService, services.routerPingService, services.internetPingService,
        services.captivePortalService, services.networkConfiguration})
    , m_networkInfo(m_readings)
    , m_locationPermission(m_readings, services.locationPermissionService, services.urlOpener)
    , m_errorMessage(m_readings)
    , m_captivePortal(m_readings, services.captivePortalService)
    , m_wifiMetrics(m_readings, services.clock)
    , m_performance(m_readings, services.routerPingService, services.internetPingService)
    , m_connectionSummary(m_readings, services.dnsService)
    , m_dns(services.dnsService)
    , m_channelAnalysis(services.channelAnalysisService, services.locationPermissionService,
          services.networkScanner, services.urlOpener, services.clock)
    , m_speedTest(services.speedTestService, loadProbe, services.clock)
    , m_traceroute(services.tracerouteService)
    , m_recommendations(m_readings)
{
}

} // namespace netvane::ui
