#pragma once

#include "bus/bus_link.h"
#include "platform/location_manager.h"

#include <QDBusMessage>

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

private Q_SLOTS:
    void readPermission();

private:
    void watchSystemBus();
    void setStatus(platform::AuthorizationStatus status);

    bus::BusLink& m_systemBus;
    platform::AuthorizationStatus m_status = platform::AuthorizationStatus::NotDetermined;
    int m_questions = 0; ///< only the answer to the last one counts
    bool m_isAskingUser = false;
};

/// What an answer of GetPermissions (a{ss}), or an error in its place, says about scanning; absent
/// when it says nothing, as when NetworkManager did not answer in time.
std::optional<platform::AuthorizationStatus> scanAuthorization(const QDBusMessage& answer);

} // namespace netvane::radio
