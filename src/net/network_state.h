#pragma once

#include "net/route_messages.h"
#include "platform/network_configuration.h"

namespace netvane::net {

// The content of rtnetlink's answers about links, addresses and neighbours, and the state of the
// network that they make together (linux/rtnetlink.h, linux/neighbour.h). The parsers take the
// bytes after the netlink header and check every length in them.

/// RTM_NEWLINK, with the index by which the others refer to it.
struct InterfaceRecord {
    std::uint32_t index = 0;
    bool isOwn = false; ///< it leads to other machines by itself: no loopback, no part of another
    platform::NetworkInterface interface;
};
std::optional<InterfaceRecord> parseInterfaceLink(netlink::AttributeBytes message);

/// RTM_NEWADDR, of an address that others can reach.
struct AddressRecord {
    std::uint32_t index = 0; ///< of its interface
    bool isIPv6 = false;
};
/// Absent for all other addresses, too.
std::optional<AddressRecord> parseAddress(netlink::AttributeBytes message);

/// RTM_NEWNEIGH.
struct NeighbourRecord {
    std::uint32_t index = 0;
    QString address;
    platform::NeighbourState state = platform::NeighbourState::Unknown;
};
std::optional<NeighbourRecord> parseNeighbour(netlink::AttributeBytes message);

/// RTM_NEWROUTE, of either family: where packets to one destination go.
struct WayRecord {
    std::uint32_t index = 0; ///< of the interface
    QString gateway; ///< empty: the destination is on the link
};
/// Absent where packets go nowhere.
std::optional<WayRecord> parseWay(netlink::AttributeBytes message);

/// Asks the kernel about all of it. Absent if it does not list its links.
std::optional<platform::NetworkState> readNetworkState(
    netlink::NetlinkSocket& socket, const std::optional<Gateway>& defaultRouter);

} // namespace netvane::net
