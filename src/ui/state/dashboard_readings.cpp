#include "ui/state/dashboard_readings.h"

#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "wifi/wifi_service.h"

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

/// By name and signal. No link is like one with neither.
bool areLinksAlike(
    const std::optional<wifi::WiFiInfo>& one, const std::optional<wifi::WiFiInfo>& other)
{
    const auto a = one.value_or(wifi::WiFiInfo());
    const auto b = other.value_or(wifi::WiFiInfo());
    return a.ssid == b.ssid && a.signalStrength == b.signalStrength;
}

/// By round trip and jitter. No reading is like one with neither.
bool arePathsAlike(const std::optional<probes::NetworkMetrics>& one,
    const std::optional<probes::NetworkMetrics>& other)
{
    const auto a = one.value_or(probes::NetworkMetrics());
    const auto b = other.value_or(probes::NetworkMetrics());
    return a.ping == b.ping && a.jitter == b.jitter;
}

} // namespace

QStringList DashboardReadings::refresh(const services::Services& services)
{
    QStringList changes;
    const auto take
        = [&changes](const QString& name, auto& copy, const auto& reading, auto areAlike) {
              if (areAlike(copy, reading))
                  return;
              copy = reading;
              changes.append(name);
          };
    const auto& wifi = *services.wifiService;
    take(u"wifi"_s, currentWiFi, wifi.currentWiFi(), areLinksAlike);
    take(u"router"_s, routerMetrics, services.routerPingService->currentMetrics(), arePathsAlike);
    take(u"internet"_s, internetMetrics, services.internetPingService->currentMetrics(),
        arePathsAlike);
    const std::equal_to equal;
    take(u"permission"_s, needsLocationPermission, wifi.needsLocationPermission(), equal);
    take(u"error"_s, errorMessage, wifi.errorMessage(), equal);
    take(u"captive"_s, isCaptive, services.captivePortalService->isCaptive(), equal);
    take(u"vpn"_s, vpnActive, probes::isVPNActive(*services.platform.networkConfiguration), equal);
    return changes;
}

} // namespace netvane::ui
