#pragma once

#include <QObject>

namespace netvane::platform {

/// Whether this user may see Wi-Fi networks. The numbers appear in log lines.
enum class AuthorizationStatus {
    NotDetermined = 0,
    Restricted = 1,
    Denied = 2,
    AuthorizedAlways = 3,
    AuthorizedWhenInUse = 4,
};

/// The permission that guards Wi-Fi scans on this system. Main thread; never blocks.
class LocationManager : public QObject {
    Q_OBJECT

public:
    /// The last known state; NotDetermined before the system's first answer.
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Makes the system ask the user. A changed status arrives by the signal.
    virtual void requestAlwaysAuthorization() = 0;

Q_SIGNALS:
    void didChangeAuthorization(AuthorizationStatus status);
};

} // namespace netvane::platform
