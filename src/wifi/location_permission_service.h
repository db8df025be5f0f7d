#pragma once

#include "platform/application_activity.h"
#include "platform/location_manager.h"

#include <QObject>

#include <optional>

namespace netvane::wifi {

/// Tracks whether the system lets this user see network names and scans, and asks for it. Published
/// state changes on the main thread, and only when it really changes.
class LocationPermissionService : public QObject {
    Q_OBJECT

public:
    using AuthorizationStatus = platform::AuthorizationStatus;

    LocationPermissionService(
        platform::LocationManager& locationManager, platform::ApplicationActivity& activity);

    AuthorizationStatus authorizationStatus() const { return m_authorizationStatus; }
    /// True exactly for AuthorizedAlways.
    bool isAuthorized() const { return m_isAuthorized; }

    /// Reads the current status of the system.
    void checkAuthorizationStatus();
    /// Makes the system ask the user; an answer arrives as a change of the published state.
    void requestPermission();
    /// Sets a status that is more certain than the system's answer: a readable network name proves
    /// the permission. Applied on a later turn of the main loop; holds until the system's own
    /// answer changes.
    void updateAuthorizationStatus(AuthorizationStatus status);

Q_SIGNALS:
    void authorizationStatusChanged();
    void isAuthorizedChanged();

private:
    bool publish(AuthorizationStatus status);

    platform::LocationManager& m_locationManager;
    AuthorizationStatus m_authorizationStatus = AuthorizationStatus::NotDetermined;
    bool m_isAuthorized = false;
    /// The system's answer that somebody knew better than.
    std::optional<AuthorizationStatus> m_correctedAnswer;
};

} // namespace netvane::wifi
