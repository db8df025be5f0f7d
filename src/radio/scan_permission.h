#pragma once

#include "bus/bus_service.h"
#include "platform/location_manager.h"

#include <optional>

namespace netvane::radio {

/// The permission that really guards scans on Linux: NetworkManager's
/// `org.freedesktop.NetworkManager.wifi.scan` (Manager.GetPermissions, signal CheckPermissions, and
/// polkit's own signal Changed). Without NetworkManager everybody may see what the kernel holds:
/// authorised always. Asking the user is a polkit check of that action with interaction
/// (org.freedesktop.PolicyKit1.Authority).
class ScanPermission : public platform::LocationManager {
    Q_OBJECT

public:
    explicit ScanPermission(bus::BusLink& systemBus);

    platform::AuthorizationStatus authorizationStatus() const override { return m_status; }
    void requestAlwaysAuthorization() override;

private:
    void readPermission();
    void setStatus(platform::AuthorizationStatus status);

    bus::BusService m_networkManager;
    platform::AuthorizationStatus m_status = platform::AuthorizationStatus::NotDetermined;
    bool m_isAskingUser = false;
};

/// What an answer of GetPermissions (a{ss}), or an error in its place, says about scanning; absent
/// when it says nothing, as when NetworkManager did not answer in time.
std::optional<platform::AuthorizationStatus> scanAuthorization(const QDBusMessage& answer);

} // namespace netvane::radio
