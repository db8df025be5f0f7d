#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::platform {

/// One network interface, the loopback aside.
struct NetworkInterface {
    QString name;
    bool isUp = false; ///< switched on (IFF_UP)
    bool hasCarrier = false; ///< a cable, an association or the like (IFF_LOWER_UP)
    bool isWireless = false;
    bool isTunnel = false; ///< its packets travel inside those of another interface
    bool hasIPv4 = false; ///< an address that others can reach: not link-local (RFC 3927)
    bool hasIPv6 = false; ///< likewise: of global scope, and not tentative or failed
    std::uint64_t receivedBytes = 0; ///< since the kernel made it
    std::uint64_t sentBytes = 0;

    bool operator==(const NetworkInterface&) const = default;
};

struct DefaultRoute {
    QString gateway; ///< empty: everything is on the link itself
    QString interfaceName;
    bool isThroughTunnel = false;

    bool operator==(const DefaultRoute&) const = default;
};

/// What the kernel knows of the gateway's hardware address (NUD_*, linux/neighbour.h).
enum class NeighbourState {
    Unknown, ///< no entry
    Reachable, ///< confirmed within the last half minute or so
    Stale, ///< was there, not confirmed since; also while it is being asked
    Failed, ///< did not answer
};

struct NetworkState {
    std::vector<NetworkInterface> interfaces;
    std::optional<DefaultRoute> route4; ///< of the lowest metric, that of a tunnel included
    std::optional<DefaultRoute> route6;
    /// Past any tunnel, of either family, IPv4 first: to the router of the network.
    std::optional<DefaultRoute> physicalRoute;
    NeighbourState router = NeighbourState::Unknown; ///< the gateway of `physicalRoute`

    bool operator==(const NetworkState&) const = default;
};

/// The network configuration of this machine, read again by each call. Any thread.
class NetworkConfiguration {
public:
    virtual ~NetworkConfiguration() = default;

    /// The IPv4 address of the default router; absent when there is none or it cannot be read.
    /// Asks the kernel, which may take up to some seconds to answer: not on the main thread.
    virtual std::optional<QString> defaultRouter() = 0;
    /// Interfaces, addresses and routes; absent if the kernel does not answer. Asks it as above.
    virtual std::optional<NetworkState> readState() = 0;
    /// The configured addresses of the DNS servers, the primary one first; empty if there is none.
    /// Reads two small files at most.
    virtual QStringList dnsServers() = 0;
    /// The names of all network interfaces, up or down. Reads one small file and never waits for a
    /// driver.
    virtual QStringList interfaceNames() = 0;
};

} // namespace netvane::platform
