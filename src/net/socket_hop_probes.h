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
