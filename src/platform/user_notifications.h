#pragma once

#include <QFlags>
#include <QObject>

#include <functional>
#include <optional>

namespace netvane::platform {

/// Whether the user sees the notifications of this program.
enum class NotificationAuthorization {
    NotDetermined = 0,
    Denied = 1,
    Authorized = 2,
    Provisional = 3,
    Ephemeral = 4,
};

enum class NotificationOption {
    Sound = 2,
    Alert = 4,
};
Q_DECLARE_FLAGS(NotificationOptions, NotificationOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(NotificationOptions)

/// The subject of a notification, for desktops that treat them differently.
enum class NotificationCategory {
    Network,
    NetworkConnected,
    NetworkDisconnected,
};

/// To be shown at once, with the default sound.
struct NotificationRequest {
    QString identifier;
    QString title; ///< plain text, as the body is
    QString body;
    NotificationCategory category = NotificationCategory::Network;
};

/// Shows notifications to the user. Main thread; never blocks. Each handler is called once, on a
/// later turn of the main loop, and not after its owner is destroyed.
class UserNotificationCenter : public QObject {
    Q_OBJECT

public:
    using SettingsHandler = std::function<void(NotificationAuthorization)>;
    using PermissionHandler
        = std::function<void(bool granted, const std::optional<QString>& error)>;
    using AddHandler = std::function<void(const std::optional<QString>& error)>;

    virtual void getNotificationSettings(QObject* owner, SettingsHandler done) = 0;
    /// The error is in the system's words; absent also when the answer is a plain no.
    virtual void requestAuthorization(
        NotificationOptions options, QObject* owner, PermissionHandler done)
        = 0;
    /// Without an error the system accepted the request.
    virtual void add(const NotificationRequest& request, QObject* owner, AddHandler done) = 0;

Q_SIGNALS:
    /// The settings were changed from outside the program.
    void settingsChanged();
};

} // namespace netvane::platform
