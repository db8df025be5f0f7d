#include "ui/state/dashboard_readings.h"

#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "wifi/wifi_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

bool looksAlike(
    const std::optional<wifi::WiFiInfo>& one, const std::optional<wifi::WiFiInfo>& other)
{
    const wifi::WiFiInfo nothing;
    const auto& a = one ? *one : nothing;
    const auto& b = other ? *other : nothing;
    return a.ssid == b.ssid && a.signalStrength == b.signalStrength;
}

bool looksAlike(const std::optional<probes::NetworkMetrics>& one,
    const std::optional<probes::NetworkMetrics>& other)
{
    const probes::NetworkMetrics nothing;
    const auto& a = one ? *one : nothing;
    const auto& b = other ? *other : nothing;
    return a.ping == b.ping && a.jitter == b.jitter;
}

QStringList DashboardReadings::refresh()
{
    QStringList changes;
    const auto take = [&](auto& copy, const auto& reading, bool isSame, const QString& name,
                          void (DashboardReadings::*changed)()) {
        if (isSame)
            return;
        copy = reading;
        changes.append(name);
        (this->*changed)();
    };
    const auto takeMetrics = [&](auto& copy, const probes::PingService& service,
                                 const QString& name, void (DashboardReadings::*changed)()) {
        const auto& reading = service.currentMetrics();
        take(copy, reading, looksAlike(copy, reading), name, changed);
    };
    const auto takeValue = [&](auto& copy, const auto& reading, const QString& name,
                               void (DashboardReadings::*changed)()) {
        take(copy, reading, copy == reading, name, changed);
    };
    const auto& wifi = *m_services.wifiService;
    take(m_currentWiFi, wifi.currentWiFi(), looksAlike(m_currentWiFi, wifi.currentWiFi()),
        u"wifi"_s, &DashboardReadings::currentWiFiChanged);
    takeMetrics(m_routerMetrics, *m_services.routerPingService, u"router"_s,
        &DashboardReadings::routerMetricsChanged);
    takeMetrics(m_internetMetrics, *m_services.internetPingService, u"internet"_s,
        &DashboardReadings::internetMetricsChanged);
    takeValue(m_needsLocationPermission, wifi.needsLocationPermission(), u"permission"_s,
        &DashboardReadings::needsLocationPermissionChanged);
    takeValue(
        m_errorMessage, wifi.errorMessage(), u"error"_s, &DashboardReadings::errorMessageChanged);
    takeValue(m_isCaptive, m_services.captivePortalService->isCaptive(), u"captive"_s,
        &DashboardReadings::isCaptiveChanged);
    takeValue(m_vpnActive, probes::isVPNActive(*m_services.platform.networkConfiguration), u"vpn"_s,
        &DashboardReadings::vpnActiveChanged);
    Q_EMIT refreshed();
    return changes;
}

} // namespace netvane::ui
