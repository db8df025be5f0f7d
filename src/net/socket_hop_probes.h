#pragma once

#include "net/error_queue.h"
#include "net/socket_probe.h"
#include "platform/hop_probe.h"

namespace netvane::net {

/// Hop probes: empty UDP datagrams, each on its own socket. The main thread may be busy when an
/// answer comes, so the kernel stamps its arrival (SIOCGSTAMPNS, socket(7)).
class SocketHopProbes : public platform::HopProbeFactory {
public:
    /// `clock` outlives this.
    explicit SocketHopProbes(base::Clock& clock, AddressLookup lookUp = lookUpHost)
        : m_context {.clock = clock, .lookUp = std::move(lookUp)}
    {
    }

    std::unique_ptr<platform::HopPath> pathTo(const QString& host) override;

    /// One probe with a hop limit of 1, to an address on a network that this machine is part of:
    /// `Failed` where a router would have to pass it on (SO_DONTROUTE, socket(7)). The first look
    /// for an answer may wait a moment (`Clock::soon`).
    [[nodiscard]] std::unique_ptr<platform::Connection> probeNeighbour(
        const QString& host, platform::ConnectionHandler handler);

private:
    bool takeTimes();

    ProbeContext m_context;
    /// The kernel stamps packets while any socket requests it, and begins with a delay. This socket
    /// keeps it active in the pauses between the probes of a neighbour.
    base::FileDescriptor m_timed;
    std::unique_ptr<base::Timer> m_untimed;
};

enum class HopAnswer {
    None, ///< for another datagram; the answer may still come
    Good, ///< identifies the hop
    Bad,
};

/// What an error means for a datagram to `peer`. A port counts as unreachable only if the peer
/// itself reports it; firewalls report it too.
HopAnswer meaningOf(const QueuedError& error, const SocketAddress& peer);

} // namespace netvane::net
