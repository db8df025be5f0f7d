#pragma once

#include "base/clock.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "wifi/wifi_info.h"

#include <QObject>

#include <memory>
#include <optional>

namespace netvane::insights {

/// Tells the user when the network changes, the link is lost, or a good signal turns poor: compares
/// each snapshot of the sampler with the one that it evaluated before. Main thread.
class NetworkNotificationService : public QObject, public wifi::WiFiSnapshotObserver {
    Q_OBJECT

public:
    using AuthorizationStatus = platform::NotificationAuthorization;
    using Category = platform::NotificationCategory;

    static constexpr auto enabledKey = QLatin1StringView("networkNotificationsEnabled");
    /// After a notification that was accepted nothing is evaluated for so long.
    static constexpr std::chrono::milliseconds notificationThrottleInterval {30'000};

    /// All three outlive this.
    NetworkNotificationService(platform::UserNotificationCenter& center,
        platform::UserDefaults& defaults, base::Clock& clock);

    /// The user's switch; survives restarts.
    bool notificationsEnabled() const { return m_notificationsEnabled; }
    /// Switching on asks for permission where nobody has decided yet; off forgets what was seen.
    void setNotificationsEnabled(bool enabled);
    /// As the system last told; nothing is sent unless it is Authorized.
    AuthorizationStatus authorizationStatus() const { return m_authorizationStatus; }
    /// Asks the system for it; the answer arrives as a change.
    void refreshAuthorizationStatus();
    /// Refreshes the status and, where nobody has decided yet, asks for alerts with sound.
    void requestNotificationPermission();

    void checkForNetworkChanges(const wifi::WiFiInfo& wifiInfo) override;
    /// At once, whatever the switch and the throttle say.
    void sendNotification(
        const QString& title, const QString& body, Category category = Category::Network);

Q_SIGNALS:
    void notificationsEnabledChanged();
    void authorizationStatusChanged();

private:
    bool mayNotify() const;
    void notifyOfChanges(const wifi::WiFiInfo& wifiInfo);
    void permissionAnswered(bool granted, const std::optional<QString>& error);

    platform::UserNotificationCenter& m_center;
    platform::UserDefaults& m_defaults;
    base::Clock& m_clock;
    bool m_notificationsEnabled = false;
    AuthorizationStatus m_authorizationStatus = AuthorizationStatus::NotDetermined;
    std::optional<QString> m_previousSsid;
    std::optional<wifi::SignalQuality> m_previousSignalQuality;
    std::optional<std::chrono::steady_clock::time_point> m_lastNotificationTime;
    std::unique_ptr<base::Timer> m_laterRefresh;
};

} // namespace netvane::insights
