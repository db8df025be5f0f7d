#include "services/services.h"

#include "base/log.h"
#include "diagnostics/channel_analysis_service.h"
#include "diagnostics/speed_test_service.h"
#include "diagnostics/traceroute_service.h"
#include "history/recorder.h"
#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "insights/report_service.h"
#include "platform/application_activity.h"
#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "verdict/verdict_service.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QCoreApplication>
#include <QLoggingCategory>

using namespace Qt::Literals::StringLiterals;

namespace netvane::services {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.services")

} // namespace

Services::Services(platform::Platform& given)
    : platform(given)
    , updaterController(QCoreApplication::applicationFilePath())
{
}

Services::~Services() = default;

void Services::makeAll(platform::ApplicationActivity& activity)
{
    auto& clock = *platform.clock;
    locationPermissionService
        = std::make_unique<wifi::LocationPermissionService>(*platform.locationManager, activity);
    const auto logPermission = [service = locationPermissionService.get()] {
        base::log(logCategory(),
            u"Netvane: Location permission status: "_s
                + QString::number(int(service->authorizationStatus())));
    };
    logPermission(); // mostly before the system's first answer, so each change is told as well
    QObject::connect(locationPermissionService.get(),
        &wifi::LocationPermissionService::authorizationStatusChanged,
        locationPermissionService.get(), logPermission);
    networkNotificationService = std::make_unique<insights::NetworkNotificationService>(
        *platform.userNotifications, *platform.userDefaults, clock);
    makeLink();
    wifiService->setLocationPermissionService(*locationPermissionService);
    wifiService->setNetworkNotificationService(networkNotificationService.get());
    makeNameLookups();
    makeSpeedTest();
    makeVerdict();
    makeRecorder();
    channelAnalysisService
        = std::make_unique<diagnostics::ChannelAnalysisService>(*platform.networkScanner, clock);
    channelAnalysisService->setLocationPermissionService(locationPermissionService.get());
    tracerouteService
        = std::make_unique<diagnostics::TracerouteService>(clock, *platform.hopProbes);
    onboardingService = std::make_unique<insights::OnboardingService>(*platform.userDefaults);
    reportService = std::make_unique<insights::ReportService>([this] { return readings(); }, clock,
        platform.queues->utility,
        insights::ReportExits {*platform.clipboard, *platform.savePanel, *platform.sharePicker});
}

void Services::makeForReport()
{
    makeLink();
    makeNameLookups();
}

void Services::makeLink()
{
    wifiService = std::make_unique<wifi::WiFiService>(
        platform.wifiClient, *platform.clock, platform.queues->userInitiated);
}

void Services::makeNameLookups()
{
    networkUtils = std::make_unique<probes::NetworkUtils>(
        *platform.networkConfiguration, platform.queues->userInitiated);
    dnsService = std::make_unique<probes::DNSService>(
        *networkUtils, platform.resolver, *platform.clock, probes::kDnsTestHost);
}

void Services::makeProbes(const std::optional<QString>& router)
{
    const auto probeOf = [this](const QString& host, const QString& name) {
        return std::make_unique<probes::PingService>(
            host, name, *platform.clock, *platform.connections);
    };
    if (router && !routerPingService)
        routerPingService = probeOf(*router, u"router"_s);
    if (!internetPingService)
        internetPingService = probeOf(probes::kInternetTarget, u"internet"_s);
    if (verdictService)
        verdictService->followProbes(routerPingService.get(), *internetPingService);
}

void Services::makeVerdict()
{
    captivePortalService = std::make_unique<probes::CaptivePortalService>(*platform.httpClient,
        platform.urlOpener.get(), *platform.clock, probes::kCaptivePortalProbe);
    verdictService = std::make_unique<verdict::VerdictService>(
        platform, *wifiService, *dnsService, *captivePortalService);
}

void Services::makeRecorder()
{
    recorder = std::make_unique<history::Recorder>(platform, *verdictService);
    QObject::connect(captivePortalService.get(), &probes::CaptivePortalService::isCaptiveChanged,
        recorder.get(), [this] {
            if (captivePortalService->isCaptive())
                recorder->note(u"portal"_s);
        });
    QObject::connect(speedTestService.get(), &diagnostics::SpeedTestService::resultChanged,
        recorder.get(), [this] {
            if (const auto& result = speedTestService->result())
                recorder->note(u"speed-test"_s,
                    u"%1 Mbps down, %2 Mbps up"_s.arg(result->downloadSpeed.value_or(0), 0, 'f', 1)
                        .arg(result->uploadSpeed.value_or(0), 0, 'f', 1));
        });
}

void Services::makeSpeedTest()
{
    speedTestService = std::make_unique<diagnostics::SpeedTestService>(*platform.httpClient,
        *platform.userDefaults, *platform.clock, diagnostics::kSpeedTestServer);
}

void Services::start()
{
    routerPingService->start();
    internetPingService->start();
    dnsService->start();
    captivePortalService->start();
}

void Services::readAnew()
{
    wifiService->updateWiFiInfo();
    routerPingService->probeAtOnce();
    internetPingService->probeAtOnce();
    dnsService->performLookup();
    captivePortalService->checkForCaptivePortal();
}

void Services::stop()
{
    if (wifiService)
        wifiService->stopMonitoring();
    for (auto* probe : {routerPingService.get(), internetPingService.get()}) {
        if (probe)
            probe->stop();
    }
    if (dnsService)
        dnsService->stop();
    if (captivePortalService)
        captivePortalService->stop();
    if (speedTestService)
        speedTestService->cancelTest();
}

insights::ReportInputs Services::readings() const
{
    insights::ReportInputs input;
    if (wifiService)
        input.wifi = wifiService->currentWiFi();
    if (routerPingService)
        input.router = routerPingService->currentMetrics();
    if (internetPingService)
        input.internet = internetPingService->currentMetrics();
    if (dnsService) {
        input.dnsLookupTime = dnsService->lookupTime();
        input.dnsServer = dnsService->dnsServer();
    }
    if (speedTestService)
        input.speedTest = speedTestService->result();
    return input;
}

} // namespace netvane::services
