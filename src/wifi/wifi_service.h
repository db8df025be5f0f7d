#pragma once

// This room holds the Wi-Fi link: its record and what is derived from that, the service that
// samples it, its history, and the permission that shows the name. The radio itself is behind
// `platform::WiFiClient`.

#include "base/clock.h"
#include "base/work_queues.h"
#include "platform/wifi_client.h"
#include "wifi/wifi_info.h"

#include <QObject>

#include <memory>
#include <optional>

namespace netvane::wifi {

class LocationPermissionService;
struct LinkSample;

/// Samples the Wi-Fi link every 5 seconds and publishes the last snapshot that differs in name,
/// signal or rate from the one before, a message for the user, and whether a permission is missing.
/// Main thread; the interface is read on `queue`, one pass at a time.
class WiFiService : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds updateInterval {5000};
    static constexpr std::chrono::milliseconds minUpdateInterval {100};

    /// Begins to sample. Without a client (null) there is nothing to sample and the message says
    /// so.
    WiFiService(
        std::shared_ptr<platform::WiFiClient> client, base::Clock& clock, base::WorkQueue& queue);
    ~WiFiService() override;

    /// The snapshot's stamp is that of its last change, not of the last pass.
    const std::optional<WiFiInfo>& currentWiFi() const { return m_currentWiFi; }
    /// What the user should know; absent when all is well.
    const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    bool needsLocationPermission() const { return m_needsLocationPermission; }

    /// The service outlives this one. Its state is followed, the present one included.
    void setLocationPermissionService(LocationPermissionService& service);
    /// Gets each snapshot at the end of its pass, but of a link that is gone only once that is
    /// sure; outlives this service.
    void setNetworkNotificationService(WiFiSnapshotObserver* observer)
    {
        m_networkNotificationService = observer;
    }

    /// One pass, unless one is in flight or began less than `minUpdateInterval` ago.
    void updateWiFiInfo();
    void startMonitoring();
    void stopMonitoring();

    /// Passes begun so far.
    int updateCount() const { return m_updateCount; }
    bool isUpdating() const { return m_isUpdating; }

Q_SIGNALS:
    void currentWiFiChanged();
    void errorMessageChanged();
    void needsLocationPermissionChanged();
    /// A pass came to its end, whatever it found.
    void passFinished();
    /// What the pass read, before anything is derived from it: no link for one that was not read,
    /// and no `radioOn` without an adapter.
    void linkRead(const std::optional<netvane::platform::LinkReading>& reading,
        const std::optional<bool>& radioOn);

private:
    void beginPass(base::Delivery delivery);
    void readLinkSnapshot(base::Delivery delivery);
    void takeSample(const LinkSample& sample);
    void applyLinkSnapshot(const WiFiInfo& snapshot);
    bool mayComeBack(const WiFiInfo& snapshot);
    void applyPermission(const WiFiInfo& snapshot, bool authorized);
    void endWithoutLink(const QString& message);
    void finishPass();
    void followPermission();

    void setCurrentWiFi(std::optional<WiFiInfo> info);
    void setErrorMessage(std::optional<QString> message);
    void setNeedsLocationPermission(bool needed);

    std::optional<WiFiInfo> m_currentWiFi;
    std::optional<QString> m_errorMessage;
    bool m_needsLocationPermission = false;

    std::shared_ptr<platform::WiFiClient> m_wifiClient;
    /// The one that is sampled, while it has a link. Without one each pass asks the client anew.
    std::shared_ptr<platform::WiFiInterface> m_interface;
    base::Clock& m_clock;
    base::WorkQueue& m_queue;
    std::unique_ptr<base::Timer> m_updateTimer;
    LocationPermissionService* m_locationPermissionService = nullptr;
    WiFiSnapshotObserver* m_networkNotificationService = nullptr;
    int m_updateCount = 0;
    bool m_isUpdating = false;
    std::optional<std::chrono::steady_clock::time_point> m_lastUpdateTime;
    std::optional<std::chrono::steady_clock::time_point> m_withoutLinkSince; ///< sleep counts
    std::optional<std::chrono::milliseconds> m_asleepWithLink; ///< `timeAsleep` when it was there
};

/// The snapshot that a reading makes: 0 dBm and rates of 0 or less, or beyond any integer, count as
/// not told, and a channel outside the bands that we know as 5 GHz.
WiFiInfo makeWiFiInfo(
    const platform::LinkReading& reading, std::chrono::system_clock::time_point timestamp);

} // namespace netvane::wifi
