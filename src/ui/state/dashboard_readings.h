#pragma once

#include "probes/network_metrics.h"
#include "wifi/wifi_info.h"

#include <QStringList>

#include <optional>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// A dashboard's own copies of the readings. A copy is replaced only when its reading differs in
/// what the dashboard shows, so nothing is drawn again while nothing that is shown has changed.
struct DashboardReadings {
    std::optional<wifi::WiFiInfo> currentWiFi;
    std::optional<probes::NetworkMetrics> routerMetrics;
    std::optional<probes::NetworkMetrics> internetMetrics;
    bool needsLocationPermission = false;
    std::optional<QString> errorMessage;
    bool isCaptive = false;
    bool vpnActive = false;

    /// Takes over what differs. Returns the names of what that was, in the order of the fields:
    /// "wifi", "router", "internet", "permission", "error", "captive", "vpn". All services exist.
    QStringList refresh(const services::Services& services);
};

} // namespace netvane::ui
