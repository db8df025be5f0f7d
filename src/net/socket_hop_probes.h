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

private:
    ProbeContext m_context;
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
