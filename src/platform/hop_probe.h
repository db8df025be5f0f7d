#pragma once

#include "platform/connection.h"

namespace netvane::platform {

/// The way to one host. The host's name is resolved once, and all probes go to the first of its
/// addresses that there is a route to, from one port: routers that share load by addresses and
/// ports send all probes to one port of the host over one way. Main thread.
class HopPath {
public:
    virtual ~HopPath() = default;

    /// Once started, sends one empty UDP datagram with the given hop limit (1 to 255). Start it
    /// only after the previous probe was cancelled: only the ports tell their answers apart.
    /// `Ready`, with `answeredBy`: a router reports that the hop limit is exceeded (ICMP time
    /// exceeded), or the host itself reports a closed `port` (ICMP port unreachable) or sends a
    /// datagram. `Failed`: there is no route, the name has no address, or a router refuses to
    /// forward it (every other ICMP error). Without an answer there is no event until it is
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
    /// For probes again and again, of one hop limit: from the second on an answer is looked for
    /// after a moment (`Clock::soon`); its time is exact. `interfaceName`, if not empty, is the one
    /// that the datagrams leave by, whatever the routes say (SO_BINDTODEVICE, socket(7)).
    [[nodiscard]] virtual std::unique_ptr<HopPath> watchedPathTo(
        const QString& host, const QString& interfaceName)
        = 0;
};

} // namespace netvane::platform
