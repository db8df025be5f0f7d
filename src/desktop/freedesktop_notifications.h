#pragma once

#include "bus/bus_link.h"
#include "platform/user_notifications.h"

#include <QDBusMessage>

#include <optional>
#include <vector>

namespace netvane::desktop {

/// Who shows notifications.
struct NotificationService {
    QString owner = {}; ///< its unique name; another process that takes its place has another
    bool hasBodyMarkup = false;
};
/// The one that gave this answer to GetCapabilities, without its owner; absent when it is no such
/// answer.
std::optional<NotificationService> notificationService(const QDBusMessage& answer);

/// The desktop's notification service (org.freedesktop.Notifications, version 1.2) on the session
/// bus. There is nobody to ask for permission: a service that
/// answers means authorised, and so does one that the bus would start for the first notification;
/// none means denied, and one that was asked but has not answered yet leaves what was known.
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

private Q_SLOTS:
    void handleOwnerChanged();

private:
    enum class Attempt { First, Second };

    void followSessionBus();
    void readCapabilities();
    void takeCapabilities(const QString& owner, const QDBusMessage& answer);
    void readActivatableNames();
    void settle(platform::NotificationAuthorization status, std::optional<QString> failure = {});
    void refresh();
    void whenKnown(std::function<void()> action);
    void whenRunning(std::function<void()> action);
    void send(
        const platform::NotificationRequest& request, const AddHandler& done, Attempt attempt);
    void notify(
        const platform::NotificationRequest& request, const AddHandler& done, Attempt attempt);
    void ask(const QDBusMessage& call, std::function<void(const QDBusMessage&)> take);
    bool isConnected() const { return m_sessionBus.state() == bus::BusLink::State::Connected; }

    bus::BusLink& m_sessionBus;
    platform::NotificationAuthorization m_status
        = platform::NotificationAuthorization::NotDetermined;
    std::optional<NotificationService> m_service; ///< once it has told what it can do
    std::optional<QString> m_failure; ///< why there is no service, when it is not plainly absent
    std::vector<std::function<void()>> m_waiting; ///< for the answer to the question in flight
    bool m_isAsking = true;
    int m_questions = 0; ///< only the answer to the last one counts
};

} // namespace netvane::desktop
