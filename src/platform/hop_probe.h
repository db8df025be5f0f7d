#pragma once

#include "platform/connection.h"

namespace netvane::platform {

/// Asks the routers on the way to a host who they are. It takes no privilege. What
/// `ConnectionFactory` says of threads, cancelling and resolvers holds here, too.
class HopProbeFactory {
public:
    virtual ~HopProbeFactory() = default;

    /// Once started, sends one empty UDP datagram that ends at the router number `hopLimit` (1 to
    /// 255) on the way to `host`, an address literal or a name; of the addresses of a name it takes
    /// the first that there is a route to.
    /// `Ready`, with `answeredBy`: a router tells that the hops are used up (ICMP time exceeded),
    /// or the host itself that nobody listens on `port` (ICMP port unreachable), or it sends
    /// something back. `Failed`: there is no route, the name has no address, or somebody on the way
    /// refuses to pass it on (every other ICMP error). Without an answer it stays silent until
    /// cancelled.
    [[nodiscard]] virtual std::unique_ptr<Connection> probeHop(
        const QString& host, quint16 port, int hopLimit, ConnectionHandler handler)
        = 0;
};

} // namespace netvane::platform
