#pragma once

#include "netlink/netlink_attributes.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::net {

// The content of rtnetlink's answers about links, addresses and neighbours (linux/if_link.h,
// linux/if_addr.h, linux/neighbour.h). The parsers take the bytes after the netlink header and
// check every length in them. A value that is absent or has another size leaves the others as they
// are.

/// RTM_NEWLINK.
struct LinkRecord {
    std::uint32_t index = 0;
    QString name; ///< empty: not told
    QByteArray kind; ///< as its driver names it (IFLA_INFO_KIND); empty for hardware
    std::uint32_t master = 0; ///< index of the bridge or the like that it is a port of; zero: none
    bool isLoopback = false;
    bool isUp = false;
    bool hasCarrier = false;
    bool isTunnel = false; ///< of a kind whose packets travel inside those of another link
    std::uint64_t receivedBytes = 0;
    std::uint64_t sentBytes = 0;

    bool operator==(const LinkRecord&) const = default;
};
/// Absent when it is too short.
std::optional<LinkRecord> parseLink(netlink::AttributeBytes message);

/// RTM_NEWADDR.
struct AddressRecord {
    std::uint32_t device = 0; ///< index of its link
    bool isIPv6 = false;
    /// Others can reach it: it is not link-local, not of this host only, and not being checked for
    /// a duplicate or known to be one.
    bool isReachable = false;

    bool operator==(const AddressRecord&) const = default;
};
/// Absent when it is too short or about neither IPv4 nor IPv6.
std::optional<AddressRecord> parseAddress(netlink::AttributeBytes message);

/// The NUD_ number of RTM_NEWNEIGH; absent when it is too short.
std::optional<std::uint16_t> parseNeighbour(netlink::AttributeBytes message);

/// Whether no other machine is behind the link: a bridge between virtual machines or containers and
/// its ports, or a link that leads nowhere.
bool isInsideThisMachine(const LinkRecord& link, const std::vector<LinkRecord>& links);

} // namespace netvane::net
