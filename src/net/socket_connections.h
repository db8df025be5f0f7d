#pragma once

#include "net/socket_probe.h"

namespace netvane::net {

/// TCP connections. The main thread may be busy when the answer comes, and checks for it with a
/// delay (`Clock::soon`), so the kernel measures the handshake (TCP_INFO, tcp(7)).
class SocketConnections : public platform::ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(base::Clock& clock, AddressLookup lookUp = lookUpHost)
        : m_context {.clock = clock, .lookUp = std::move(lookUp)}
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;

private:
    ProbeContext m_context;
};

} // namespace netvane::net
