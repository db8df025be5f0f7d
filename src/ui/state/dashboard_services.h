#pragma once

namespace netvane::diagnostics {
class ChannelAnalysisService;
class SpeedTestService;
class TracerouteService;
} // namespace netvane::diagnostics
namespace netvane::insights {
class OnboardingService;
} // namespace netvane::insights
namespace netvane::base {
class Clock;
} // namespace netvane::base
namespace netvane::platform {
class NetworkConfiguration;
class NetworkScanner;
class UrlOpener;
} // namespace netvane::platform
namespace netvane::probes {
class CaptivePortalService;
class DNSService;
class PingService;
} // namespace netvane::probes
namespace netvane::wifi {
class LocationPermissionService;
class WiFiService;
} // namespace netvane::wifi

namespace netvane::ui {

/// What a dashboard shows and acts on. All of it outlives the views.
struct DashboardServices {
    wifi::WiFiService& wifiService;
    probes::PingService& routerPingService;
    probes::PingService& internetPingService;
    probes::DNSService& dnsService;
    diagnostics::SpeedTestService& speedTestService;
    probes::CaptivePortalService& captivePortalService;
    wifi::LocationPermissionService& locationPermissionService;
    diagnostics::ChannelAnalysisService& channelAnalysisService;
    diagnostics::TracerouteService& tracerouteService;
    insights::OnboardingService& onboardingService;
    platform::NetworkScanner& networkScanner;
    platform::NetworkConfiguration& networkConfiguration;
    platform::UrlOpener& urlOpener;
    base::Clock& clock;
};

} // namespace netvane::ui
