#pragma once

#include "base/clock.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "wifi/wifi_info.h"

#include <QObject>

#include <memory>
#include <optional>

namespace netvane::insights {

/// Notifies the user when the network changes, the link is lost, or a good signal becomes poor. It
/// compares each snapshot of the sampler with the one that it evaluated before, so that a lasting
/// state is reported once. Main thread.
class NetworkNotificationService : public QObject, public wifi::WiFiSnapshotObserver {
    Q_OBJECT

public:
    using AuthorizationStatus = platform::NotificationAuthorization;
    using Category = platform::NotificationCategory;

    static constexpr auto enabledKey = QLatin1StringView("networkNotificationsEnabled");
    /// After an accepted notification, nothing is evaluated for this time.
    static constexpr std::chrono::milliseconds notificationThrottleInterval {30'000};

    /// All three outlive this.
    NetworkNotificationService(platform::UserNotificationCenter& center,
        platform::UserDefaults& defaults, base::Clock& clock);

    /// The user's switch; survives restarts.
    bool notificationsEnabled() const { return m_notificationsEnabled; }
    /// Switching on requests permission if the user has not decided yet; switching off clears the
    /// stored snapshot.
    void setNotificationsEnabled(bool enabled);
    /// As last reported by the system. Nothing is sent unless it is Authorized.
    AuthorizationStatus authorizationStatus() const { return m_authorizationStatus; }
    /// Reads it from the system; the answer arrives as a change.
    void refreshAuthorizationStatus();
    /// Refreshes the status and, if the user has not decided yet, requests alerts with sound.
    void requestNotificationPermission();

    void checkForNetworkChanges(const wifi::WiFiInfo& wifiInfo) override;
    /// Sends at once, without regard to the switch and the throttle.
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
