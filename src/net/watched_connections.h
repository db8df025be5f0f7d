#pragma once

#include "net/host_addresses.h"
#include "platform/connection.h"

#include <functional>
#include <memory>

namespace netvane::base {
class Clock;
} // namespace netvane::base

namespace netvane::net {

class Attempt;
class ConnectionWatcher;
class Mailbox;

/// The makers' end of a `ConnectionWatcher`. The first packet to an address literal is sent by
/// whoever calls `start`, so that no change of threads lies between the call and the packet; names
/// are resolved on threads of their own. `start` and the making on one thread, `cancel` on any.
class WatchedConnections {
public:
    /// `clock` outlives this, and the watcher. With `lookLater`, called in `start`, the watcher is
    /// not told of a connection that waits for its peer's answer: it finds it when it next looks.
    WatchedConnections(
        const base::Clock& clock, AddressLookup lookUp, std::function<void()> lookLater = {});

    std::shared_ptr<ConnectionWatcher> watcher() const { return m_watcher; }
    /// Has the watcher end, on its own thread.
    void stop();

    std::unique_ptr<platform::Connection> make(const QString& host, quint16 port,
        std::unique_ptr<Attempt> attempt, platform::ConnectionHandler handler);

private:
    const base::Clock& m_clock;
    const std::shared_ptr<Mailbox> m_mailbox;
    const std::shared_ptr<ConnectionWatcher> m_watcher;
    const std::function<void()> m_lookLater;
    quint64 m_lastId = 0;
};

} // namespace netvane::net
