#pragma once

#include "net/error_queue.h"
#include "net/socket_probe.h"
#include "platform/hop_probe.h"

namespace netvane::net {

/// Hop probes: empty UDP datagrams, each on a socket of its own. The main thread may be busy when
/// an answer comes: the kernel takes the time (SIOCGSTAMPNS, socket(7)).
class SocketHopProbes : public platform::HopProbeFactory {
public:
    /// `clock` outlives this.
    explicit SocketHopProbes(base::Clock& clock, AddressLookup lookUp = lookUpHost)
        : m_context {.clock = clock, .lookUp = std::move(lookUp)}
    {
    }

    std::unique_ptr<platform::HopPath> pathTo(const QString& host) override;
    std::unique_ptr<platform::HopPath> watchedPathTo(
        const QString& host, const QString& interfaceName) override;
    /// To a host on a network that this machine is part of: a probe is `Failed` where a router
    /// would have to pass it on (SO_DONTROUTE, socket(7)). For probes again and again: from the
    /// second on an answer is looked for after a moment (`Clock::soon`).
    std::unique_ptr<platform::HopPath> pathToNeighbour(const QString& host);

private:
    ProbeContext m_context;
};

enum class HopAnswer {
    None, ///< meant for another datagram; the answer may still come
    Good, ///< tells who is at that hop
    Bad,
};

/// What an error means for a datagram to `peer`. A port counts as unreachable only if the peer
/// itself says so; firewalls say it, too.
HopAnswer meaningOf(const QueuedError& error, const SocketAddress& peer);

} // namespace netvane::net
