#pragma once

#include "platform/connection.h"
#include "platform/hop_probe.h"
#include "platform/linux/host_addresses.h"

#include <thread>

namespace netvane::platform {

class Attempt;
class Clock;
class Mailbox;

/// Connections and probes by sockets of the kernel, all watched by one thread that sleeps while
/// none is under way. The first packet to an address literal is sent by whoever calls `start`, so
/// that no change of threads lies between the call and the packet; names are resolved on threads of
/// their own. `start` and the making on one thread, the main one.
class SocketConnections : public ConnectionFactory, public HopProbeFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(const Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketConnections() override;

    std::unique_ptr<Connection> connectTcp(
        const QString& host, quint16 port, ConnectionHandler handler) override;
    std::unique_ptr<Connection> probeHop(
        const QString& host, quint16 port, int hopLimit, ConnectionHandler handler) override;

private:
    std::unique_ptr<Connection> make(const QString& host, quint16 port,
        std::unique_ptr<Attempt> attempt, ConnectionHandler handler);

    const Clock& m_clock;
    const std::shared_ptr<Mailbox> m_mailbox;
    std::jthread m_thread;
    quint64 m_lastId = 0;
};

} // namespace netvane::platform
