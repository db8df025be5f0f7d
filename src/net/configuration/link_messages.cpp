#include "net/configuration/link_messages.h"

#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace netvane::net {
namespace {

using netlink::attributesAfter;
using netlink::headerOf;

constexpr unsigned kLowerUp = 1U << 16U; // IFF_LOWER_UP; its header collides with net/if.h
/// As their drivers in the kernel name them; TAP devices are of the kind "tun", too.
constexpr std::array<QByteArrayView, 16> kTunnelKinds {"tun", "wireguard", "ovpn", "ppp", "xfrm",
    "vti", "ipip", "sit", "gre", "gretap", "erspan", "ip6tnl", "ip6gre", "ip6gretap", "vti6",
    "vxlan"};
constexpr std::array<QByteArrayView, 3> kDeadEnds {"dummy", "ifb", "nlmon"};
constexpr std::array<QByteArrayView, 2> kVirtualPorts {"veth", "tun"};
constexpr QByteArrayView kBridge = "bridge";

template <size_t Count>
bool isOneOf(const std::array<QByteArrayView, Count>& kinds, const QByteArray& kind)
{
    return std::ranges::find(kinds, QByteArrayView(kind)) != kinds.end();
}

/// Newer kernels append fields to it.
std::uint64_t counter(netlink::AttributeBytes statistics, size_t offset)
{
    std::uint64_t value = 0;
    if (statistics.size() >= offset + sizeof value)
        std::memcpy(&value, statistics.data() + offset, sizeof value);
    return value;
}

bool isIPv4LinkLocal(const std::optional<QByteArray>& address) // RFC 3927
{
    return address && address->startsWith("\xa9\xfe");
}

bool isInnerBridge(std::uint32_t index, const std::vector<LinkRecord>& links)
{
    const auto isIt
        = [index](const LinkRecord& each) { return each.index == index && each.kind == kBridge; };
    const auto leadsOut = [index](const LinkRecord& each) {
        return each.master == index && !isOneOf(kVirtualPorts, each.kind);
    };
    return index != 0 && std::ranges::any_of(links, isIt) && std::ranges::none_of(links, leadsOut);
}

} // namespace

std::optional<LinkRecord> parseLink(netlink::AttributeBytes message)
{
    const auto header = headerOf<ifinfomsg>(message);
    if (!header)
        return {};
    const netlink::Attributes<IFLA_MAX> attributes(attributesAfter<ifinfomsg>(message));
    const netlink::Attributes<IFLA_INFO_MAX> info(attributes.nested(IFLA_LINKINFO));
    const auto kind = info.text(IFLA_INFO_KIND).value_or(QByteArray());
    const auto statistics = attributes.nested(IFLA_STATS64);
    return LinkRecord {.index = std::uint32_t(header->ifi_index),
        .name = QString::fromLocal8Bit(attributes.text(IFLA_IFNAME).value_or(QByteArray())),
        .kind = kind,
        .master = attributes.number<std::uint32_t>(IFLA_MASTER).value_or(0),
        .isLoopback = (header->ifi_flags & IFF_LOOPBACK) != 0,
        .isUp = (header->ifi_flags & IFF_UP) != 0,
        .hasCarrier = (header->ifi_flags & kLowerUp) != 0,
        .isTunnel = isOneOf(kTunnelKinds, kind),
        .receivedBytes = counter(statistics, offsetof(rtnl_link_stats64, rx_bytes)),
        .sentBytes = counter(statistics, offsetof(rtnl_link_stats64, tx_bytes))};
}

std::optional<AddressRecord> parseAddress(netlink::AttributeBytes message)
{
    const auto header = headerOf<ifaddrmsg>(message);
    if (!header || (header->ifa_family != AF_INET && header->ifa_family != AF_INET6))
        return {};
    const netlink::Attributes<IFA_MAX> attributes(attributesAfter<ifaddrmsg>(message));
    const auto flags = attributes.number<std::uint32_t>(IFA_FLAGS).value_or(header->ifa_flags);
    // IFA_ADDRESS may be that of the far end.
    const auto own
        = attributes.has(IFA_LOCAL) ? attributes.bytes(IFA_LOCAL) : attributes.bytes(IFA_ADDRESS);
    const bool isIPv6 = header->ifa_family == AF_INET6;
    const bool isUnsure
        = (flags & IFA_F_TENTATIVE) != 0 && (flags & IFA_F_OPTIMISTIC) == 0; // RFC 4429
    return AddressRecord {.device = header->ifa_index,
        .isIPv6 = isIPv6,
        .isReachable = header->ifa_scope < RT_SCOPE_LINK && !isUnsure
            && (flags & IFA_F_DADFAILED) == 0 && (isIPv6 || !isIPv4LinkLocal(own))};
}

std::optional<std::uint16_t> parseNeighbour(netlink::AttributeBytes message)
{
    const auto header = headerOf<ndmsg>(message);
    return header ? std::optional(header->ndm_state) : std::nullopt;
}

bool isInsideThisMachine(const LinkRecord& link, const std::vector<LinkRecord>& links)
{
    return isOneOf(kDeadEnds, link.kind) || isInnerBridge(link.index, links)
        || isInnerBridge(link.master, links);
}

} // namespace netvane::net
