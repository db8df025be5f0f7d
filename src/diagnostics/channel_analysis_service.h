#pragma once

#include "base/clock.h"
#include "platform/network_scanner.h"

#include <QObject>

#include <map>
#include <optional>
#include <vector>

namespace netvane::wifi {
class LocationPermissionService;
} // namespace netvane::wifi

namespace netvane::diagnostics {

/// Scans for nearby networks when the user asks for it, counts them by channel and names the
/// channel that fewest of them use. Main thread.
class ChannelAnalysisService : public QObject {
    Q_OBJECT

public:
    /// Networks by channel number, in ascending order. A number that two bands share has one count.
    using ChannelUtilization = std::map<int, int>;

    /// The shortest time between the end of a successful scan and the next one.
    static constexpr std::chrono::milliseconds maxScanInterval {30'000};

    /// Both outlive this. Nothing is scanned before `scanNetworks`.
    ChannelAnalysisService(platform::NetworkScanner& scanner, base::Clock& clock);

    /// The networks of the last successful scan, in the scanner's order.
    const std::vector<platform::NearbyNetwork>& nearbyNetworks() const { return m_nearbyNetworks; }
    /// What tells no channel is not counted.
    const ChannelUtilization& channelUtilization() const { return m_channelUtilization; }
    bool isScanning() const { return m_isScanning; }
    /// When the last successful scan's results were stored.
    const std::optional<std::chrono::system_clock::time_point>& lastScanTime() const
    {
        return m_lastScanTime;
    }
    /// Why the last request brought no new networks, in a sentence without its full stop; absent
    /// after one that did, while one is under way, and without permission.
    const std::optional<QString>& problem() const { return m_problem; }
    /// The channel with the fewest networks among those that have any, the lowest of several such;
    /// absent when nothing was counted.
    std::optional<int> recommendedChannel() const;

    /// Guards every scan; without it nothing is scanned. Outlives this service.
    void setLocationPermissionService(const wifi::LocationPermissionService* service)
    {
        m_locationPermissionService = service;
    }

    /// Begins a scan, unless permission is missing, the last success is too recent, or one is under
    /// way. Its results arrive by the published properties; a failed one changes none of them but
    /// `isScanning` and `problem`, and may be repeated at once.
    void scanNetworks();

Q_SIGNALS:
    void nearbyNetworksChanged();
    void channelUtilizationChanged();
    void isScanningChanged();
    void lastScanTimeChanged();
    void problemChanged();

private:
    void performScan();
    void processScanResults(const std::vector<platform::NearbyNetwork>& networks);
    void updateChannelUtilization();
    bool isTooSoon() const;
    void setScanning(bool isScanning);
    void setProblem(std::optional<QString> problem);

    platform::NetworkScanner& m_scanner;
    base::Clock& m_clock;
    std::vector<platform::NearbyNetwork> m_nearbyNetworks;
    ChannelUtilization m_channelUtilization;
    bool m_isScanning = false;
    std::optional<std::chrono::system_clock::time_point> m_lastScanTime;
    std::optional<QString> m_problem;
    const wifi::LocationPermissionService* m_locationPermissionService = nullptr;
    /// Together with `m_lastScanTime`, which a clock that is set may move. By
    /// `Clock::nowWithSleep`.
    std::optional<std::chrono::steady_clock::time_point> m_lastSuccess;
};

} // namespace netvane::diagnostics
