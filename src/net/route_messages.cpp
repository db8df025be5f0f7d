#include "net/route_messages.h"

#include "net/netlink_dump.h"

#include <arpa/inet.h>
#include <linux/if_link.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <utility>

namespace netvane::net {
namespace {

constexpr int kNextHopAttributeMax = NHA_GATEWAY; // nothing beyond it is read
/// As their drivers in the kernel name them; TAP devices are of the kind "tun", too.
constexpr std::array<QByteArrayView, 16> kTunnelKinds {"tun", "wireguard", "ovpn", "ppp", "xfrm",
    "vti", "ipip", "sit", "gre", "gretap", "erspan", "ip6tnl", "ip6gre", "ip6gretap", "vti6",
    "vxlan"};

/// Four bytes in network order as dotted text; absent for other lengths and for "no address".
std::optional<QString> ipv4Text(const std::optional<QByteArray>& address)
{
    if (!address || address->size() != sizeof(in_addr) || *address == QByteArray(4, '\0'))
        return {};
    char text[INET_ADDRSTRLEN] = {};
    ::inet_ntop(AF_INET, address->constData(), text, sizeof text);
    return QString::fromLatin1(text);
}

std::optional<Gateway> gatewayAt(
    std::optional<QString> address, std::optional<std::uint32_t> device)
{
    return address ? std::optional(Gateway {*std::move(address), device.value_or(0)})
                   : std::nullopt;
}

/// RTA_GATEWAY, or instead RTA_VIA, which may contain a router of another family.
std::optional<QString> gatewayOf(const netlink::Attributes<RTA_MAX>& attributes)
{
    if (auto gateway = ipv4Text(attributes.bytes(RTA_GATEWAY)))
        return gateway;
    const auto via = attributes.bytes(RTA_VIA);
    if (!via || via->size() < qsizetype(sizeof(rtvia)))
        return {};
    rtvia header {};
    std::memcpy(&header, via->constData(), sizeof header);
    return header.rtvia_family == AF_INET ? ipv4Text(via->sliced(sizeof header)) : std::nullopt;
}

/// RTA_MULTIPATH: the first next hop with a gateway. A link without carrier counts as dead if the
/// kernel is configured to ignore such links; the flag shows this.
std::optional<Gateway> firstGateway(netlink::AttributeBytes nextHops)
{
    while (const auto hop = headerOf<rtnexthop>(nextHops)) {
        if (hop->rtnh_len < sizeof(rtnexthop) || hop->rtnh_len > nextHops.size())
            return {};
        const netlink::Attributes<RTA_MAX> attributes(
            attributesAfter<rtnexthop>(nextHops.first(hop->rtnh_len)));
        if ((hop->rtnh_flags & RTNH_F_DEAD) == 0) {
            if (auto gateway = gatewayAt(gatewayOf(attributes), std::uint32_t(hop->rtnh_ifindex)))
                return gateway;
        }
        nextHops = nextHops.subspan(std::min(nextHops.size(), size_t(RTNH_ALIGN(hop->rtnh_len))));
    }
    return {};
}

std::vector<std::uint32_t> groupMembers(netlink::AttributeBytes group)
{
    std::vector<std::uint32_t> members;
    while (const auto entry = headerOf<nexthop_grp>(group)) {
        members.push_back(entry->id);
        group = group.subspan(sizeof(nexthop_grp));
    }
    return members;
}

const NextHopRecord* findLiving(const std::vector<NextHopRecord>& nextHops, std::uint32_t id)
{
    const auto found = std::ranges::find(nextHops, id, &NextHopRecord::id);
    return found == nextHops.end() || found->dead ? nullptr : &*found;
}

/// Groups contain no groups (the kernel refuses them), so one level is enough.
std::optional<Gateway> resolvedGateway(const std::vector<NextHopRecord>& nextHops, std::uint32_t id)
{
    const NextHopRecord* hop = findLiving(nextHops, id);
    if (!hop || hop->gateway)
        return hop ? hop->gateway : std::nullopt;
    for (const std::uint32_t member : hop->members) {
        if (const NextHopRecord* each = findLiving(nextHops, member); each && each->gateway)
            return each->gateway;
    }
    return {};
}

} // namespace

std::optional<RouteRecord> parseRoute(netlink::AttributeBytes message)
{
    const auto header = headerOf<rtmsg>(message);
    if (!header || header->rtm_family != AF_INET)
        return {};
    const netlink::Attributes<RTA_MAX> attributes(attributesAfter<rtmsg>(message));
    RouteRecord route {
        // The header has room for the first 255 tables only.
        .table = attributes.number<std::uint32_t>(RTA_TABLE).value_or(header->rtm_table),
        .type = header->rtm_type,
        .destinationBits = header->rtm_dst_len,
        .typeOfService = header->rtm_tos,
        .metric = attributes.number<std::uint32_t>(RTA_PRIORITY).value_or(0),
        .nextHopId = attributes.number<std::uint32_t>(RTA_NH_ID),
    };
    if ((header->rtm_flags & RTNH_F_DEAD) == 0)
        route.gateway = gatewayAt(gatewayOf(attributes), attributes.number<std::uint32_t>(RTA_OIF));
    if (!route.gateway)
        route.gateway = firstGateway(attributes.nested(RTA_MULTIPATH));
    return route;
}

std::optional<NextHopRecord> parseNextHop(netlink::AttributeBytes message)
{
    const auto header = headerOf<nhmsg>(message);
    if (!header)
        return {};
    const netlink::Attributes<kNextHopAttributeMax> attributes(attributesAfter<nhmsg>(message));
    const auto id = attributes.number<std::uint32_t>(NHA_ID);
    if (!id)
        return {};
    return NextHopRecord {
        .id = *id,
        .dead = (header->nh_flags & RTNH_F_DEAD) != 0,
        .gateway = header->nh_family == AF_INET ? gatewayAt(ipv4Text(attributes.bytes(NHA_GATEWAY)),
                       attributes.number<std::uint32_t>(NHA_OIF))
                                                : std::nullopt,
        .members = groupMembers(attributes.nested(NHA_GROUP)),
    };
}

std::optional<LinkRecord> parseLink(netlink::AttributeBytes message)
{
    const auto header = headerOf<ifinfomsg>(message);
    if (!header)
        return {};
    const netlink::Attributes<IFLA_MAX> attributes(attributesAfter<ifinfomsg>(message));
    const netlink::Attributes<IFLA_INFO_MAX> info(attributes.nested(IFLA_LINKINFO));
    const auto kind = info.text(IFLA_INFO_KIND);
    return LinkRecord {.index = std::uint32_t(header->ifi_index),
        .isTunnel
        = kind && std::ranges::find(kTunnelKinds, QByteArrayView(*kind)) != kTunnelKinds.end()};
}

bool isDefaultRoute(const RouteRecord& route)
{
    return route.table == RT_TABLE_MAIN && route.type == RTN_UNICAST && route.destinationBits == 0
        && route.typeOfService == 0;
}

bool needsNextHops(const RouteRecord& route)
{
    return !route.gateway && route.nextHopId;
}

std::optional<Gateway> defaultGatewayOf(const std::vector<RouteRecord>& routes,
    const std::vector<NextHopRecord>& nextHops, const std::vector<LinkRecord>& tunnels)
{
    std::optional<Gateway> router;
    std::pair<bool, std::uint32_t> best; // whether through a tunnel, and the metric
    for (const RouteRecord& route : routes) {
        if (!isDefaultRoute(route))
            continue;
        const auto gateway
            = needsNextHops(route) ? resolvedGateway(nextHops, *route.nextHopId) : route.gateway;
        if (!gateway)
            continue;
        const std::pair rank(
            std::ranges::find(tunnels, gateway->device, &LinkRecord::index) != tunnels.end(),
            route.metric);
        if (router && rank >= best)
            continue;
        router = gateway;
        best = rank;
    }
    return router;
}

} // namespace netvane::net
