#pragma once

#include "net/socket_hop_probes.h"
#include "net/socket_probe.h"

#include <map>

namespace netvane::net {

/// What the last attempts at a host came to.
struct FailedAttempts {
    bool isRefused = false;
    int unanswered = 0; ///< so many in a row
    std::unique_ptr<platform::HopPath> datagrams {}; ///< once one was sent
};
/// Those that accepted the last attempt have no record.
using FailedAttemptsByHost = std::map<QString, FailedAttempts>;

/// TCP connections. The main thread may be busy when the answer comes, and looks for it only after
/// a moment (`Clock::soon`): the kernel takes the time of the handshake (TCP_INFO, tcp(7)).
///
/// A refusal is an answer, too, if the host itself sent it. Many routers refuse connections or drop
/// them without a word. To a host that refused the last attempt, or left three in a row unanswered,
/// an empty datagram goes beside each further one (`SocketHopProbes::pathToNeighbour`), and the
/// first answer counts. A host that accepts is asked by TCP alone.
class SocketConnections : public platform::ConnectionFactory {
public:
    /// `clock` outlives this.
    explicit SocketConnections(base::Clock& clock, AddressLookup lookUp = lookUpHost)
        : m_datagrams(clock, lookUp)
        , m_context {.clock = clock, .lookUp = std::move(lookUp)}
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;
    std::unique_ptr<platform::Connection> sendFullPacket(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override;

private:
    SocketHopProbes m_datagrams;
    FailedAttemptsByHost m_failedAttempts; ///< the probes write to it, so it goes after them
    ProbeContext m_context;
};

} // namespace netvane::net
