#pragma once

#include "net/socket_hop_probes.h"
#include "net/socket_probe.h"

#include <map>

namespace netvane::net {

/// What the last attempts at a host came to.
struct FailedAttempts {
    bool isRefused = false;
    int unanswered = 0; ///< so many in a row
};
/// Those that accepted the last attempt have no record.
using FailedAttemptsByHost = std::map<QString, FailedAttempts>;

/// TCP connections. The main thread may be busy when the answer comes, and checks for it with a
/// delay (`Clock::soon`), so the kernel measures the handshake (TCP_INFO, tcp(7)).
///
/// A refusal is an answer, too, if the host itself sent it. Many routers refuse connections or drop
/// them silently. To a host that refused the last attempt, or left three in a row unanswered,
/// an empty datagram goes beside each further one (`SocketHopProbes::probeNeighbour`), and the
/// first answer counts. A host that accepts is asked by TCP alone.
class SocketConnections : public platform::ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(base::Clock& clock, AddressLookup lookUp = lookUpHost)
        : m_context {.clock = clock, .lookUp = lookUp}
        , m_datagrams(clock, std::move(lookUp))
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;

private:
    FailedAttemptsByHost m_failedAttempts; ///< the probes write to it, so it goes after them
    ProbeContext m_context;
    SocketHopProbes m_datagrams;
};

} // namespace netvane::net
