#include "net/configuration/route_messages.h"

#include <arpa/inet.h>
#include <linux/nexthop.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace netvane::net {
namespace {

constexpr int kNextHopAttributeMax = NHA_GATEWAY; // nothing beyond it is read
using netlink::attributesAfter;
using netlink::headerOf;

/// An address in network order as text; absent for another length and for "no address".
std::optional<QString> textOf(int family, const std::optional<QByteArray>& address)
{
    const size_t length = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    if ((family != AF_INET && family != AF_INET6) || !address || size_t(address->size()) != length
        || *address == QByteArray(address->size(), '\0'))
        return {};
    std::array<char, INET6_ADDRSTRLEN> text {};
    ::inet_ntop(family, address->constData(), text.data(), text.size());
    return QString::fromLatin1(text.data());
}

std::optional<Gateway> gatewayAt(
    std::optional<QString> address, std::optional<std::uint32_t> device)
{
    return address ? std::optional(Gateway {*std::move(address), device.value_or(0)})
                   : std::nullopt;
}

/// RTA_GATEWAY, or instead RTA_VIA, which may contain a router of another family.
std::optional<QString> gatewayOf(int family, const netlink::Attributes<RTA_MAX>& attributes)
{
    if (auto gateway = textOf(family, attributes.bytes(RTA_GATEWAY)))
        return gateway;
    const auto via = attributes.bytes(RTA_VIA);
    if (!via || via->size() < qsizetype(sizeof(rtvia)))
        return {};
    rtvia header {};
    std::memcpy(&header, via->constData(), sizeof header);
    return textOf(header.rtvia_family, via->sliced(sizeof header));
}

/// RTA_MULTIPATH: the first next hop with a gateway. A link without carrier counts as dead if the
/// kernel is configured to ignore such links; the flag shows this.
std::optional<Gateway> firstGateway(int family, netlink::AttributeBytes nextHops)
{
    while (const auto hop = headerOf<rtnexthop>(nextHops)) {
        if (hop->rtnh_len < sizeof(rtnexthop) || hop->rtnh_len > nextHops.size())
            return {};
        const netlink::Attributes<RTA_MAX> attributes(
            attributesAfter<rtnexthop>(nextHops.first(hop->rtnh_len)));
        if ((hop->rtnh_flags & RTNH_F_DEAD) == 0) {
            if (auto gateway
                = gatewayAt(gatewayOf(family, attributes), std::uint32_t(hop->rtnh_ifindex)))
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

std::optional<Gateway> gatewayOf(
    const RouteRecord& route, const std::vector<NextHopRecord>& nextHops)
{
    return needsNextHops(route) ? resolvedGateway(nextHops, *route.nextHopId) : route.gateway;
}

} // namespace

std::optional<RouteRecord> parseRoute(netlink::AttributeBytes message)
{
    const auto header = headerOf<rtmsg>(message);
    if (!header || (header->rtm_family != AF_INET && header->rtm_family != AF_INET6))
        return {};
    const netlink::Attributes<RTA_MAX> attributes(attributesAfter<rtmsg>(message));
    RouteRecord route {
        // The header has room for the first 255 tables only.
        .table = attributes.number<std::uint32_t>(RTA_TABLE).value_or(header->rtm_table),
        .type = header->rtm_type,
        .destinationBits = header->rtm_dst_len,
        .typeOfService = header->rtm_tos,
        .metric = attributes.number<std::uint32_t>(RTA_PRIORITY).value_or(0),
        .device = attributes.number<std::uint32_t>(RTA_OIF).value_or(0),
        .nextHopId = attributes.number<std::uint32_t>(RTA_NH_ID),
    };
    if ((header->rtm_flags & RTNH_F_DEAD) == 0)
        route.gateway = gatewayAt(gatewayOf(header->rtm_family, attributes), route.device);
    if (!route.gateway)
        route.gateway = firstGateway(header->rtm_family, attributes.nested(RTA_MULTIPATH));
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
        .gateway = gatewayAt(textOf(header->nh_family, attributes.bytes(NHA_GATEWAY)),
            attributes.number<std::uint32_t>(NHA_OIF)),
        .members = groupMembers(attributes.nested(NHA_GROUP)),
    };
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

bool isHostRoute(const RouteRecord& route)
{
    constexpr int kWholeIPv4 = 32;
    return route.table == RT_TABLE_MAIN && route.type == RTN_UNICAST
        && route.destinationBits == kWholeIPv4 && route.gateway;
}

std::optional<QString> defaultRouterOf(const std::vector<RouteRecord>& routes,
    const std::vector<NextHopRecord>& nextHops, const std::vector<std::uint32_t>& tunnels)
{
    std::optional<QString> router;
    std::pair<bool, std::uint32_t> best; // whether through a tunnel, and the metric
    for (const RouteRecord& route : routes) {
        if (!isDefaultRoute(route))
            continue;
        const auto gateway = gatewayOf(route, nextHops);
        if (!gateway)
            continue;
        const std::pair rank(
            std::ranges::find(tunnels, gateway->device) != tunnels.end(), route.metric);
        if (router && rank >= best)
            continue;
        router = gateway->address;
        best = rank;
    }
    return router;
}

std::optional<Gateway> gatewayPastTunnels(const std::vector<RouteRecord>& routes,
    const std::vector<NextHopRecord>& nextHops, const std::vector<std::uint32_t>& tunnels)
{
    std::optional<Gateway> found;
    std::uint32_t metric = 0;
    for (const RouteRecord& route : routes) {
        const auto gateway = nextOf(route, nextHops);
        if (!gateway || std::ranges::find(tunnels, gateway->device) != tunnels.end()
            || (found && route.metric >= metric))
            continue;
        found = gateway;
        metric = route.metric;
    }
    return found;
}

std::optional<Gateway> nextOf(const RouteRecord& route, const std::vector<NextHopRecord>& nextHops)
{
    if (auto gateway = gatewayOf(route, nextHops))
        return gateway;
    return route.device != 0 ? std::optional(Gateway {{}, route.device}) : std::nullopt;
}

} // namespace netvane::net
