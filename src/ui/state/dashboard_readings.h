#pragma once

#include "probes/network_metrics.h"
#include "wifi/wifi_info.h"

#include <QObject>
#include <QStringList>

#include <optional>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// A dashboard's own copies of the readings, replaced only when what matters to the display is
/// different, so that nothing is redrawn while nothing that is shown has changed. Main thread.
class DashboardReadings : public QObject {
    Q_OBJECT

public:
    /// `services` outlive the readings. All of them exist.
    explicit DashboardReadings(const services::Services& services)
        : m_services(services)
    {
    }

    /// Takes over what is different; returns what that was, in the order of the signals below:
    /// "wifi", "router", "internet", "permission", "error", "captive", "vpn".
    QStringList refresh();

    const std::optional<wifi::WiFiInfo>& currentWiFi() const { return m_currentWiFi; }
    const std::optional<probes::NetworkMetrics>& routerMetrics() const { return m_routerMetrics; }
    const std::optional<probes::NetworkMetrics>& internetMetrics() const
    {
        return m_internetMetrics;
    }
    bool needsLocationPermission() const { return m_needsLocationPermission; }
    const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    bool isCaptive() const { return m_isCaptive; }
    bool vpnActive() const { return m_vpnActive; }

Q_SIGNALS:
    void currentWiFiChanged();
    void routerMetricsChanged();
    void internetMetricsChanged();
    void needsLocationPermissionChanged();
    void errorMessageChanged();
    void isCaptiveChanged();
    void vpnActiveChanged();
    /// After all of the above, also when there were none.
    void refreshed();

private:
    const services::Services& m_services;
    std::optional<wifi::WiFiInfo> m_currentWiFi;
    std::optional<probes::NetworkMetrics> m_routerMetrics;
    std::optional<probes::NetworkMetrics> m_internetMetrics;
    bool m_needsLocationPermission = false;
    std::optional<QString> m_errorMessage;
    bool m_isCaptive = false;
    bool m_vpnActive = false;
};

/// Whether a dashboard would show the two alike: by name and signal; none is like one with neither.
bool looksAlike(
    const std::optional<wifi::WiFiInfo>& one, const std::optional<wifi::WiFiInfo>& other);
/// By round trip and jitter; none is like one with neither.
bool looksAlike(const std::optional<probes::NetworkMetrics>& one,
    const std::optional<probes::NetworkMetrics>& other);

} // namespace netvane::ui
