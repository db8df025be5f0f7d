#pragma once

#include "bus/bus_link.h"
#include "platform/status_notifier_host.h"

namespace netvane::desktop {

/// Asks the session's `org.kde.StatusNotifierWatcher` for its property
/// IsStatusNotifierHostRegistered, and again whenever the watcher or a host comes or goes. Without
/// a session bus there is no host.
class SessionStatusNotifierHost final : public platform::StatusNotifierHost {
    Q_OBJECT

public:
    explicit SessionStatusNotifierHost(bus::BusLink& sessionBus);

    std::optional<bool> isPresent() const override { return m_isPresent; }

private Q_SLOTS:
    void read();

private:
    void followSessionBus();
    void set(bool isPresent);

    bus::BusLink& m_sessionBus;
    std::optional<bool> m_isPresent;
    int m_asked = 0; ///< only the answer to the last question counts
};

} // namespace netvane::desktop
