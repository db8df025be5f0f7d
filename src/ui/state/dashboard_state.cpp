#include "ui/state/dashboard_state.h"

#include "insights/recommendations.h"
#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

using probes::DNSService;
using wifi::LocationPermissionService;

DashboardState::DashboardState(const services::Services& services, probes::PingService* loadProbe)
    : m_services(services)
    , m_linkHistory(*services.platform.clock)
    , m_channelAnalysis(services)
    , m_speedTest(*services.speedTestService, loadProbe, *services.platform.clock)
    , m_traceroute(*services.tracerouteService)
    , m_verdict(services)
    , m_settings(services)
{
    connect(&m_settings, &SettingsState::backRequested, this, [this] { setShowSettings(false); });
    const auto* permission = services.locationPermissionService.get();
    // A permission that was granted hides the card with the next refresh, which brings the name.
    // One that was lost may find the readings as they were.
    connect(permission, &LocationPermissionService::isAuthorizedChanged, this, [this, permission] {
        if (!permission->isAuthorized())
            showPermission();
    });
    connect(permission, &LocationPermissionService::authorizationStatusChanged, this,
        &DashboardState::canRequestChanged);
    const auto* dns = services.dnsService.get();
    connect(dns, &DNSService::lookupTimeChanged, this, &DashboardState::showLookups);
    connect(dns, &DNSService::dnsServerChanged, this, &DashboardState::showLookups);
    showReadings();
    showLookups();
}

QStringList DashboardState::refresh()
{
    const auto previousLink = m_readings.currentWiFi;
    const QStringList changes = m_readings.refresh(m_services);
    if (!changes.isEmpty()) {
        recordLinkChanges(previousLink);
        showReadings();
    }
    // The graphs go on while the figures stay the same.
    showPaths();
    showPermission();
    return changes;
}

void DashboardState::setShown(bool isShown)
{
    if (std::exchange(m_isShown, isShown) == isShown)
        return;
    m_channelAnalysis.setShown(isShown);
    m_speedTest.setShown(isShown);
    showReadings();
    Q_EMIT isShownChanged();
}

void DashboardState::setShowSettings(bool show)
{
    if (std::exchange(m_showSettings, show) != show)
        Q_EMIT showSettingsChanged();
}

bool DashboardState::canRequestPermission() const
{
    return m_services.locationPermissionService->authorizationStatus()
        == platform::AuthorizationStatus::NotDetermined;
}

bool DashboardState::goBack()
{
    const bool wasInSettings = m_showSettings;
    setShowSettings(false);
    return wasInSettings;
}

void DashboardState::openLoginPage()
{
    m_services.captivePortalService->openLoginPage();
}

void DashboardState::openSystemSettings()
{
    m_services.platform.urlOpener->openUrl(platform::kPrivacySettingsUrl);
}

void DashboardState::requestPermission()
{
    m_services.locationPermissionService->requestPermission();
}

template <typename Value>
void DashboardState::show(Value& shown, const Value& current, void (DashboardState::*changed)())
{
    if (shown == current)
        return;
    shown = current;
    Q_EMIT(this->*changed)();
}

void DashboardState::showReadings()
{
    const auto& [link, router, internet, needsPermission, error, isCaptive, vpnActive] = m_readings;
    show(m_networkInfo, NetworkInfo::of(link, vpnActive), &DashboardState::networkInfoChanged);
    show(m_errorMessage, orUndefined(error), &DashboardState::errorMessageChanged);
    show(m_isCaptive, isCaptive, &DashboardState::isCaptiveChanged);
    followLinkVisibility();
    show(m_wifiMetrics, WiFiMetrics::of(link, m_linkHistory), &DashboardState::wifiMetricsChanged);
    showPaths();
    showSummary();
    show(m_recommendations, insights::recommendations({link, router, internet}),
        &DashboardState::recommendationsChanged);
}

void DashboardState::showPermission()
{
    show(m_needsLocationPermission,
        m_readings.needsLocationPermission && !m_services.locationPermissionService->isAuthorized(),
        &DashboardState::needsLocationPermissionChanged);
}

void DashboardState::showPaths()
{
    const auto& [router, internet] = std::tie(m_readings.routerMetrics, m_readings.internetMetrics);
    m_routerPath.follow(router && m_isShown, m_services.routerPingService->metrics());
    m_internetPath.follow(internet && m_isShown, m_services.internetPingService->metrics());
    show(m_router, PerformanceSection::ofRouter(router, m_routerPath.series),
        &DashboardState::routerChanged);
    show(m_internet, PerformanceSection::ofInternet(internet, m_internetPath.series),
        &DashboardState::internetChanged);
}

void DashboardState::Path::follow(
    bool isPresentAndShown, const std::vector<probes::NetworkMetrics>& history)
{
    const bool wasShown = std::exchange(isShown, isPresentAndShown);
    // A full history keeps its length.
    const auto last = history.empty() ? newest : history.back().timestamp;
    if (!isShown || (wasShown && recordCount == history.size() && newest == last))
        return;
    recordCount = history.size();
    newest = last;
    series = PathSeries::of(history);
}

void DashboardState::showSummary()
{
    show(m_connectionSummary,
        {connectionItem(u"WiFi"_s, wifiStatus(m_readings.currentWiFi)),
            connectionItem(u"Router"_s, pathStatus(m_readings.routerMetrics)),
            connectionItem(u"Internet"_s, pathStatus(m_readings.internetMetrics)),
            connectionItem(u"DNS"_s, dnsStatus(m_services.dnsService->lookupTime()))},
        &DashboardState::connectionSummaryChanged);
}

void DashboardState::showLookups()
{
    const DNSService& dns = *m_services.dnsService;
    show(m_dnsCard, ui::dnsCard(dns), &DashboardState::dnsCardChanged);
    const auto& server = dns.dnsServer();
    show(m_dnsServer, server ? QVariant(u"Router assigned: "_s + *server) : QVariant(),
        &DashboardState::dnsServerChanged);
    showSummary();
}

void DashboardState::recordLink()
{
    if (const auto& link = m_readings.currentWiFi)
        m_linkHistory.addDataPoint(link->linkRate, link->signalStrength, link->noise);
}

/// Each value is watched on its own: a link in which two of them changed is recorded twice.
void DashboardState::recordLinkChanges(const std::optional<wifi::WiFiInfo>& previous)
{
    if (!m_isLinkShown)
        return;
    using wifi::WiFiInfo;
    const WiFiInfo before = previous.value_or(WiFiInfo());
    const WiFiInfo now = m_readings.currentWiFi.value_or(WiFiInfo());
    for (const auto value : {&WiFiInfo::signalStrength, &WiFiInfo::linkRate, &WiFiInfo::noise}) {
        if (now.*value != before.*value)
            recordLink();
    }
}

/// The figures of the link coming into sight record a point.
void DashboardState::followLinkVisibility()
{
    const bool isShown = m_isShown && m_readings.currentWiFi;
    if (!std::exchange(m_isLinkShown, isShown) && isShown)
        recordLink();
}

} // namespace netvane::ui
