#pragma once

#include "platform/connection.h"

namespace netvane::platform {

/// Finds the routers on the path to a host. It needs no privilege. Threads, cancelling and
/// resolvers are as for `ConnectionFactory`.
class HopProbeFactory {
public:
    virtual ~HopProbeFactory() = default;

    /// Once started, sends one empty UDP datagram with the given hop limit (1 to 255) to `host`, an
    /// address literal or a name; of a name's addresses it uses the first one with a route.
    /// `Ready`, with `answeredBy`: a router reports that the hop limit is exceeded (ICMP time
    /// exceeded), or the host itself reports a closed `port` (ICMP port unreachable) or sends a
    /// datagram. `Failed`: there is no route, the name has no address, or a router refuses to
    /// forward it (every other ICMP error). Without an answer there is no event until it is
    /// cancelled.
    [[nodiscard]] virtual std::unique_ptr<Connection> probeHop(
        const QString& host, quint16 port, int hopLimit, ConnectionHandler handler)
        = 0;
};

} // namespace netvane::platform
