#pragma once

#include "platform/connection.h"

namespace netvane::platform {

/// The way to one host. The host's name is resolved once, and all probes go to the first of its
/// addresses that there is a route to, from one port: routers that share load by addresses and
/// ports send all probes to one port of the host over one way. Main thread.
class HopPath {
public:
    virtual ~HopPath() = default;

    /// Once started, sends one empty UDP datagram that ends at the router number `hopLimit` (1 to
    /// 255). To be started when the probe before it is cancelled: answers are told apart by the
    /// ports alone.
    /// `Ready`, with `answeredBy`: a router tells that the hops are used up (ICMP time exceeded),
    /// or the host itself that nobody listens on `port` (ICMP port unreachable), or it sends
    /// something back. `Failed`: there is no route, the name has no address, or somebody on the way
    /// refuses to pass it on (every other ICMP error). Without an answer it stays silent until
    /// cancelled.
    [[nodiscard]] virtual std::unique_ptr<Connection> probe(
        quint16 port, int hopLimit, ConnectionHandler handler)
        = 0;
};

/// Asks the routers on the way to a host who they are. It takes no privilege. What
/// `ConnectionFactory` says of threads, cancelling and resolvers holds here, too.
class HopProbeFactory {
public:
    virtual ~HopProbeFactory() = default;

    /// `host` is an address literal or a name. The factory outlives the path.
    [[nodiscard]] virtual std::unique_ptr<HopPath> pathTo(const QString& host) = 0;
};

} // namespace netvane::platform
