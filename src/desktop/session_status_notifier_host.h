#pragma once

#include "bus/bus_service.h"
#include "platform/status_notifier_host.h"

namespace netvane::desktop {

/// Reads the property IsStatusNotifierHostRegistered of the session's
/// `org.kde.StatusNotifierWatcher`, and again whenever the watcher or a host comes or goes. Without
/// a watcher or a session bus there is no host.
class SessionStatusNotifierHost final : public platform::StatusNotifierHost {
    Q_OBJECT

public:
    explicit SessionStatusNotifierHost(bus::BusLink& sessionBus);

    std::optional<bool> isPresent() const override { return m_isPresent; }

private:
    void read();
    void setPresent(bool isPresent);

    bus::BusService m_watcher;
    std::optional<bool> m_isPresent;
};

} // namespace netvane::desktop
