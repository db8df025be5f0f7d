#pragma once

#include "netlink/netlink_attributes.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::net {

// The content of rtnetlink's answers about IPv4 routes (linux/rtnetlink.h, linux/nexthop.h). Both
// parsers take the bytes after the netlink header and check every length in them.

/// RTM_NEWROUTE.
struct RouteRecord {
    std::uint32_t table = 0;
    std::uint8_t type = 0; ///< RTN_UNICAST, RTN_BLACKHOLE, ...
    std::uint8_t destinationBits = 0; ///< zero: for every destination
    std::uint8_t typeOfService = 0; ///< not zero: for some packets only
    std::uint32_t metric = 0; ///< less is preferred
    std::optional<QString> gateway; ///< IPv4, of the first next hop that has one and is not dead
    std::optional<std::uint32_t> nextHopId; ///< the route goes through a next hop object

    bool operator==(const RouteRecord&) const = default;
};
/// Absent if it is too short or not about IPv4.
std::optional<RouteRecord> parseRoute(netlink::AttributeBytes message);

/// RTM_NEWNEXTHOP: one next hop, or a group of others.
struct NextHopRecord {
    std::uint32_t id = 0;
    bool dead = false;
    std::optional<QString> gateway; ///< IPv4
    std::vector<std::uint32_t> members; ///< of a group, in order

    bool operator==(const NextHopRecord&) const = default;
};
/// Absent if it is too short or has no number.
std::optional<NextHopRecord> parseNextHop(netlink::AttributeBytes message);

/// Whether it is the default route of the main table.
bool isDefaultRoute(const RouteRecord& route);

/// Whether the route's gateway, if any, is only in its next hop object. The kernel repeats it in
/// the route unless net.ipv4.nexthop_compat_mode is off.
bool needsNextHops(const RouteRecord& route);

/// The gateway of the default route of the lowest metric among those that have one; the first of
/// several with the same metric, as the kernel does.
std::optional<QString> defaultRouterOf(
    const std::vector<RouteRecord>& routes, const std::vector<NextHopRecord>& nextHops);

} // namespace netvane::net
