#pragma once

#include "bus/bus_service.h"
#include "platform/user_notifications.h"

#include <optional>
#include <vector>

namespace netvane::desktop {

/// The process that shows notifications.
struct NotificationService {
    QString owner = {}; ///< its unique name on the bus; the next process has another
    bool hasBodyMarkup = false;
};
/// The process that gave this answer to GetCapabilities, without its name; absent when it is no
/// such answer.
std::optional<NotificationService> notificationService(const QDBusMessage& answer);

/// The desktop's notification service (org.freedesktop.Notifications, version 1.2) on the session
/// bus. Nobody has to be asked for permission: a service that answers means authorised, and so does
/// one that the bus would start for the first notification. No service means denied. One that was
/// asked but has not answered leaves what was known, until it answers.
class FreedesktopNotifications : public platform::UserNotificationCenter {
    Q_OBJECT

public:
    explicit FreedesktopNotifications(bus::BusLink& sessionBus);

    void getNotificationSettings(QObject* owner, SettingsHandler done) override;
    /// The desktop's own settings decide about both options.
    void requestAuthorization(
        platform::NotificationOptions options, QObject* owner, PermissionHandler done) override;
    void add(
        const platform::NotificationRequest& request, QObject* owner, AddHandler done) override;

private:
    struct Delivery {
        platform::NotificationRequest request;
        AddHandler done;
        bool mayStart = true; ///< the service, when none is running
        bool mayRepeat = true; ///< with the next process, when the first one is gone
    };

    void readService();
    void askCapabilities(const QString& owner, int limitMs);
    void takeCapabilities(const QString& owner, const QDBusMessage& answer);
    void readActivatableNames();
    void setKnown(platform::NotificationAuthorization status, std::optional<QString> failure = {});
    void readIfUnknown();
    void whenKnown(std::function<void()> action);
    void deliver(Delivery delivery);
    void startService(const Delivery& delivery);
    void notify(Delivery delivery);
    void repeat(Delivery delivery);

    bus::BusService m_bus;
    platform::NotificationAuthorization m_status
        = platform::NotificationAuthorization::NotDetermined;
    std::optional<NotificationService> m_service; ///< once it has told what it can do
    std::optional<QString> m_failure; ///< why there is no service, unless nobody has the name
    bool m_isReading = true; ///< also before the bus is known
    std::vector<std::function<void()>> m_waiting; ///< for the end of reading
};

} // namespace netvane::desktop
