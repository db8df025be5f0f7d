#pragma once

#include "platform/connection.h"
#include "platform/linux/host_addresses.h"

#include <thread>

namespace netvane::platform {

class Clock;
class Mailbox;

/// Connections by sockets of the kernel, all watched by one thread that sleeps while none is being
/// set up. The handshake with an address literal is sent by whoever calls `start`, so that no
/// change of threads lies between the call and the first packet; names are resolved on threads of
/// their own. `start` and `connectTcp` on one thread, the main one.
class SocketConnections : public ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(const Clock& clock, AddressLookup lookUp = lookUpHost);
    ~SocketConnections() override;

    std::unique_ptr<Connection> connectTcp(
        const QString& host, quint16 port, ConnectionHandler handler) override;

private:
    const Clock& m_clock;
    const std::shared_ptr<Mailbox> m_mailbox;
    std::jthread m_thread;
    quint64 m_lastId = 0;
};

} // namespace netvane::platform
