#pragma once

#include "services/updater_controller.h"

#include <QString>

#include <memory>
#include <optional>

namespace netvane::diagnostics {
class ChannelAnalysisService;
class SpeedTestService;
class TracerouteService;
} // namespace netvane::diagnostics
namespace netvane::history {
class Recorder;
} // namespace netvane::history
namespace netvane::insights {
class NetworkNotificationService;
class OnboardingService;
class ReportService;
struct ReportInputs;
} // namespace netvane::insights
namespace netvane::platform {
class ApplicationActivity;
struct Platform;
} // namespace netvane::platform
namespace netvane::probes {
class CaptivePortalService;
class DNSService;
class NetworkUtils;
class PingService;
} // namespace netvane::probes
namespace netvane::verdict {
class VerdictService;
} // namespace netvane::verdict
namespace netvane::wifi {
class LocationPermissionService;
class WiFiService;
} // namespace netvane::wifi

/// All services of a program. The desktop program creates all of them, the report program only
/// those that its report needs. The views, the delegate and the report get them from here and do
/// not depend on how they are created.
namespace netvane::services {

/// Owns the services. A service is null until it is created, and is never replaced. Main thread.
struct Services {
    /// `platform` outlives the services.
    explicit Services(platform::Platform& platform);
    ~Services();

    /// The desktop program: everything but the latency probes, in the order in which the services
    /// need each other. Of the measurements, only the sampling of the link begins here. `activity`
    /// outlives the services.
    void makeAll(platform::ApplicationActivity& activity);
    /// The report program: the link, whose sampling begins here, and the name lookups.
    void makeForReport();
    /// The latency probes of `router` and of the internet that do not exist yet, not started.
    /// Without a router (absent) there is no probe of it.
    void makeProbes(const std::optional<QString>& router);
    void makeSpeedTest();
    /// The portal check and the verdict, which takes the latency probes in when they are made. The
    /// link and the name lookups exist.
    void makeVerdict();

    /// Starts the services that measure on timers. All services exist.
    void start();
    /// Reads and measures everything again, now. All services exist.
    void readAnew();
    /// Ends all timers and transfers of the existing services.
    void stop();
    /// The readings for a report. What has not been measured yet is absent.
    insights::ReportInputs readings() const;

    platform::Platform& platform;
    const UpdaterController updaterController;
    std::unique_ptr<probes::NetworkUtils> networkUtils;
    std::unique_ptr<wifi::LocationPermissionService> locationPermissionService;
    std::unique_ptr<insights::NetworkNotificationService> networkNotificationService;
    std::unique_ptr<wifi::WiFiService> wifiService;
    std::unique_ptr<probes::PingService> routerPingService;
    std::unique_ptr<probes::PingService> internetPingService;
    std::unique_ptr<probes::DNSService> dnsService;
    std::unique_ptr<diagnostics::SpeedTestService> speedTestService;
    std::unique_ptr<probes::CaptivePortalService> captivePortalService;
    std::unique_ptr<diagnostics::ChannelAnalysisService> channelAnalysisService;
    std::unique_ptr<diagnostics::TracerouteService> tracerouteService;
    std::unique_ptr<insights::OnboardingService> onboardingService;
    std::unique_ptr<insights::ReportService> reportService;
    std::unique_ptr<verdict::VerdictService> verdictService;
    std::unique_ptr<history::Recorder> recorder;

private:
    void makeLink();
    void makeRecorder();
    void makeNameLookups();
};

} // namespace netvane::services
