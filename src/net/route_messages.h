#pragma once

#include "netlink/netlink_attributes.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::net {

// The content of rtnetlink's answers about IPv4 routes (linux/rtnetlink.h, linux/nexthop.h). The
// parsers take the bytes after the netlink header and check every length in them.

/// Where packets go next.
struct Gateway {
    QString address; ///< IPv4
    std::uint32_t device = 0; ///< index of the link that leads to it; zero: not told

    bool operator==(const Gateway&) const = default;
};

/// RTM_NEWROUTE.
struct RouteRecord {
    std::uint32_t table = 0;
    std::uint8_t type = 0; ///< RTN_UNICAST, RTN_BLACKHOLE, ...
    std::uint8_t destinationBits = 0; ///< zero: for every destination
    std::uint8_t typeOfService = 0; ///< not zero: for some packets only
    std::uint32_t metric = 0; ///< less is preferred
    std::optional<Gateway> gateway; ///< of the first next hop that has one and is not dead
    std::optional<std::uint32_t> nextHopId; ///< the route goes through a next hop object

    bool operator==(const RouteRecord&) const = default;
};
/// Absent if it is too short or not about IPv4.
std::optional<RouteRecord> parseRoute(netlink::AttributeBytes message);

/// RTM_NEWNEXTHOP: one next hop, or a group of others.
struct NextHopRecord {
    std::uint32_t id = 0;
    bool dead = false;
    std::optional<Gateway> gateway;
    std::vector<std::uint32_t> members; ///< of a group, in order

    bool operator==(const NextHopRecord&) const = default;
};
/// Absent if it is too short or has no number.
std::optional<NextHopRecord> parseNextHop(netlink::AttributeBytes message);

/// RTM_NEWLINK.
struct LinkRecord {
    std::uint32_t index = 0;
    /// It is of a kind (IFLA_INFO_KIND) whose packets travel inside those of another link.
    bool isTunnel = false;

    bool operator==(const LinkRecord&) const = default;
};
/// Absent when it is too short.
std::optional<LinkRecord> parseLink(netlink::AttributeBytes message);

/// Whether it is the default route of the main table.
bool isDefaultRoute(const RouteRecord& route);

/// Whether the route's gateway, if any, is only in its next hop object. The kernel repeats it in
/// the route unless net.ipv4.nexthop_compat_mode is off.
bool needsNextHops(const RouteRecord& route);

/// The gateway of the default route of the lowest metric among those that have one; the first of
/// several with the same metric, as the kernel does. One through any of `tunnels` counts only where
/// there is no other: behind it is the far end of the tunnel, and not the router of this network.
std::optional<Gateway> defaultGatewayOf(const std::vector<RouteRecord>& routes,
    const std::vector<NextHopRecord>& nextHops, const std::vector<LinkRecord>& tunnels);

} // namespace netvane::net
