#include "net/network_state.h"

#include "net/netlink_dump.h"

#include <QFileInfo>

#include <arpa/inet.h>
#include <linux/if.h>
#include <linux/if_addr.h>
#include <linux/if_arp.h>
#include <linux/if_link.h>
#include <linux/neighbour.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

using platform::NeighbourState;
using platform::NetworkState;

/// Addresses on the internet. Nothing is sent to them: the kernel tells which way it would take.
constexpr std::array kFarIPv4 = {"1.1.1.1", "9.9.9.9"};
constexpr std::array kFarIPv6 = {"2606:4700:4700::1111", "2620:fe::fe"};

/// Links that are no way to anywhere, whatever their state.
constexpr std::array<QByteArrayView, 3> kIdleKinds {"dummy", "ifb", "nlmon"};

/// Empty for other lengths.
QString addressText(int family, const std::optional<QByteArray>& address)
{
    const qsizetype wanted = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    if (!address || address->size() != wanted)
        return {};
    std::array<char, INET6_ADDRSTRLEN> text {};
    ::inet_ntop(family, address->constData(), text.data(), text.size());
    return QString::fromLatin1(text.data());
}

/// RTA_GATEWAY, or RTA_VIA for a router of the other family; empty without one.
QString gatewayText(int family, const netlink::Attributes<RTA_MAX>& attributes)
{
    if (QString text = addressText(family, attributes.bytes(RTA_GATEWAY)); !text.isEmpty())
        return text;
    const auto via = attributes.bytes(RTA_VIA);
    rtvia header {};
    if (!via || via->size() < qsizetype(sizeof header))
        return {};
    std::memcpy(&header, via->constData(), sizeof header);
    return addressText(header.rtvia_family, via->sliced(sizeof header));
}

bool isWireless(const QString& name)
{
    return QFileInfo::exists(u"/sys/class/net/%1/phy80211"_s.arg(name));
}

NeighbourState neighbourState(std::uint16_t state)
{
    if ((state & (NUD_REACHABLE | NUD_PERMANENT | NUD_NOARP)) != 0)
        return NeighbourState::Reachable;
    if ((state & (NUD_FAILED | NUD_INCOMPLETE)) != 0)
        return NeighbourState::Failed;
    return (state & (NUD_STALE | NUD_DELAY | NUD_PROBE)) != 0 ? NeighbourState::Stale
                                                              : NeighbourState::Unknown;
}

/// The way of packets to one of these addresses; absent where the kernel knows none.
template <typename Addresses>
std::optional<WayRecord> wayTo(
    netlink::NetlinkSocket& socket, int family, const Addresses& addresses)
{
    for (const char* address : addresses) {
        std::array<std::byte, sizeof(in6_addr)> bytes {};
        ::inet_pton(family, address, bytes.data());
        const size_t length = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
        const rtmsg header {
            .rtm_family = std::uint8_t(family), .rtm_dst_len = std::uint8_t(length * 8)};
        const auto found
            = ask(socket, {RTM_GETROUTE, RTM_NEWROUTE, RTA_DST, std::span(bytes).first(length)},
                header, parseWay);
        if (!found.empty())
            return found.front();
    }
    return {};
}

std::optional<platform::DefaultRoute> routeBy(
    const std::vector<InterfaceRecord>& links, const std::optional<WayRecord>& way)
{
    if (!way)
        return {};
    const auto link = std::ranges::find(links, way->index, &InterfaceRecord::index);
    if (link == links.end())
        return {};
    return platform::DefaultRoute {.gateway = way->gateway,
        .interfaceName = link->interface.name,
        .isThroughTunnel = link->interface.isTunnel};
}

NeighbourState stateOf(netlink::NetlinkSocket& socket, const std::vector<InterfaceRecord>& links,
    const platform::DefaultRoute& route)
{
    const auto link = std::ranges::find_if(
        links, [&](const auto& each) { return each.interface.name == route.interfaceName; });
    const ndmsg header {
        .ndm_family = std::uint8_t(route.gateway.contains(u':') ? AF_INET6 : AF_INET)};
    for (const auto& neighbour :
        ask(socket, {RTM_GETNEIGH, RTM_NEWNEIGH}, header, parseNeighbour)) {
        if (neighbour.index == link->index && neighbour.address == route.gateway)
            return neighbour.state;
    }
    return NeighbourState::Unknown;
}

} // namespace

std::optional<InterfaceRecord> parseInterfaceLink(netlink::AttributeBytes message)
{
    const auto header = headerOf<ifinfomsg>(message);
    const auto link = parseLink(message);
    if (!header || !link)
        return {};
    const netlink::Attributes<IFLA_MAX> attributes(attributesAfter<ifinfomsg>(message));
    const auto name = attributes.text(IFLA_IFNAME);
    if (!name || name->isEmpty())
        return {};
    const netlink::Attributes<IFLA_INFO_MAX> info(attributes.nested(IFLA_LINKINFO));
    const auto kind = info.text(IFLA_INFO_KIND).value_or(QByteArray());
    InterfaceRecord record {.index = link->index};
    record.isOwn = (header->ifi_flags & IFF_LOOPBACK) == 0 && !attributes.has(IFLA_MASTER)
        && std::ranges::find(kIdleKinds, QByteArrayView(kind)) == kIdleKinds.end();
    record.interface = {.name = QString::fromUtf8(*name),
        .isUp = (header->ifi_flags & IFF_UP) != 0,
        .hasCarrier = (header->ifi_flags & IFF_LOWER_UP) != 0,
        .isTunnel = link->isTunnel};
    rtnl_link_stats64 counters {};
    if (const auto bytes = attributes.bytes(IFLA_STATS64)) {
        std::memcpy(
            &counters, bytes->constData(), std::min(sizeof counters, size_t(bytes->size())));
        record.interface.receivedBytes = counters.rx_bytes;
        record.interface.sentBytes = counters.tx_bytes;
    }
    return record;
}

std::optional<AddressRecord> parseAddress(netlink::AttributeBytes message)
{
    const auto header = headerOf<ifaddrmsg>(message);
    if (!header || header->ifa_scope != RT_SCOPE_UNIVERSE
        || (header->ifa_family != AF_INET && header->ifa_family != AF_INET6))
        return {};
    const netlink::Attributes<IFA_MAX> attributes(attributesAfter<ifaddrmsg>(message));
    const auto flags = attributes.number<std::uint32_t>(IFA_FLAGS).value_or(header->ifa_flags);
    const QString text = addressText(header->ifa_family, attributes.bytes(IFA_ADDRESS));
    // The kernel gives some link-local IPv4 addresses (RFC 3927) the scope of others.
    if (text.isEmpty() || text.startsWith(u"169.254."_s)
        || (flags & (IFA_F_TENTATIVE | IFA_F_DADFAILED)) != 0)
        return {};
    return AddressRecord {.index = header->ifa_index, .isIPv6 = header->ifa_family == AF_INET6};
}

std::optional<NeighbourRecord> parseNeighbour(netlink::AttributeBytes message)
{
    const auto header = headerOf<ndmsg>(message);
    if (!header || (header->ndm_family != AF_INET && header->ndm_family != AF_INET6))
        return {};
    const netlink::Attributes<NDA_MAX> attributes(attributesAfter<ndmsg>(message));
    return NeighbourRecord {.index = std::uint32_t(header->ndm_ifindex),
        .address = addressText(header->ndm_family, attributes.bytes(NDA_DST)),
        .state = neighbourState(header->ndm_state)};
}

std::optional<WayRecord> parseWay(netlink::AttributeBytes message)
{
    const auto header = headerOf<rtmsg>(message);
    if (!header || header->rtm_type != RTN_UNICAST)
        return {};
    const netlink::Attributes<RTA_MAX> attributes(attributesAfter<rtmsg>(message));
    const auto device = attributes.number<std::uint32_t>(RTA_OIF);
    if (!device)
        return {};
    return WayRecord {.index = *device, .gateway = gatewayText(header->rtm_family, attributes)};
}

std::optional<NetworkState> readNetworkState(
    netlink::NetlinkSocket& socket, const std::optional<Gateway>& defaultRouter)
{
    auto links = ask(socket, {RTM_GETLINK, RTM_NEWLINK}, ifinfomsg {}, parseInterfaceLink);
    if (links.empty()) // the loopback is always there
        return {};
    for (const auto& address :
        ask(socket, {RTM_GETADDR, RTM_NEWADDR}, ifaddrmsg {}, parseAddress)) {
        const auto link = std::ranges::find(links, address.index, &InterfaceRecord::index);
        if (link != links.end())
            (address.isIPv6 ? link->interface.hasIPv6 : link->interface.hasIPv4) = true;
    }
    NetworkState state {.route4 = routeBy(links, wayTo(socket, AF_INET, kFarIPv4)),
        .route6 = routeBy(links, wayTo(socket, AF_INET6, kFarIPv6))};
    const auto& first = state.route4 ? state.route4 : state.route6;
    state.physicalRoute = first;
    if (first && first->isThroughTunnel)
        state.physicalRoute = defaultRouter
            ? routeBy(links, WayRecord {defaultRouter->device, defaultRouter->address})
            : std::nullopt;
    if (state.physicalRoute && !state.physicalRoute->gateway.isEmpty())
        state.router = stateOf(socket, links, *state.physicalRoute);
    for (auto& link : links) {
        if (!link.isOwn)
            continue;
        link.interface.isWireless = isWireless(link.interface.name);
        state.interfaces.push_back(std::move(link.interface));
    }
    return state;
}

} // namespace netvane::net
