#include "net/configuration/network_state.h"

#include <QHostAddress>

#include <linux/neighbour.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

using platform::NeighbourState;

const LinkRecord* findLink(const std::vector<LinkRecord>& links, std::uint32_t index)
{
    const auto found = std::ranges::find(links, index, &LinkRecord::index);
    return found == links.end() ? nullptr : &*found;
}

std::optional<platform::DefaultRoute> routeBy(
    const std::optional<Gateway>& gateway, const std::vector<LinkRecord>& links)
{
    if (!gateway)
        return {};
    const auto* link = findLink(links, gateway->device);
    platform::DefaultRoute route {.gateway = gateway->address,
        .interfaceName = link ? link->name : QString(),
        .isThroughTunnel = link && link->isTunnel};
    if (QHostAddress(route.gateway).isLinkLocal() && !route.interfaceName.isEmpty())
        route.gateway += u'%' + route.interfaceName;
    return route;
}

bool hasAddress(const NetworkRecords& records, const LinkRecord& link, bool isIPv6)
{
    return std::ranges::any_of(records.addresses, [&](const AddressRecord& each) {
        return each.device == link.index && each.isIPv6 == isIPv6 && each.isReachable;
    });
}

NeighbourState stateOf(std::uint16_t number)
{
    if ((number & (NUD_REACHABLE | NUD_PERMANENT | NUD_NOARP)) != 0)
        return NeighbourState::Reachable;
    if ((number & NUD_FAILED) != 0)
        return NeighbourState::Failed;
    return number == NUD_NONE ? NeighbourState::Unknown : NeighbourState::Stale;
}

} // namespace

std::vector<std::uint32_t> tunnelsAmong(const std::vector<LinkRecord>& links)
{
    std::vector<std::uint32_t> tunnels;
    for (const auto& link : links) {
        if (link.isTunnel)
            tunnels.push_back(link.index);
    }
    return tunnels;
}

void settleModems(NetworkRecords& records)
{
    if (physicalGateway(records))
        return;
    for (auto* routes : {&records.ipv4, &records.ipv6}) {
        const auto isIt = [&](const LinkRecord& link) {
            return routes->chosen && link.index == routes->chosen->device && link.kind == "ppp";
        };
        const auto modem = std::ranges::find_if(records.links, isIt);
        if (modem == records.links.end())
            continue;
        modem->isTunnel = false;
        routes->pastTunnels = routes->chosen;
    }
}

std::optional<Gateway> physicalGateway(const NetworkRecords& records)
{
    return records.ipv4.pastTunnels ? records.ipv4.pastTunnels : records.ipv6.pastTunnels;
}

platform::NetworkState networkState(
    const NetworkRecords& records, const std::function<bool(const QString& name)>& isWireless)
{
    const auto& links = records.links;
    platform::NetworkState state {.route4 = routeBy(records.ipv4.chosen, links),
        .route6 = routeBy(records.ipv6.chosen, links),
        .physicalRoute = routeBy(physicalGateway(records), links),
        .router = records.neighbour ? stateOf(*records.neighbour) : NeighbourState::Unknown};
    const auto carriesRoute = [&](const LinkRecord& link) {
        return std::ranges::any_of(std::array {state.route4, state.route6, state.physicalRoute},
            [&](const auto& route) { return route && route->interfaceName == link.name; });
    };
    for (const auto& link : links) {
        if (link.isLoopback || (isInsideThisMachine(link, links) && !carriesRoute(link)))
            continue;
        state.interfaces.push_back({.name = link.name,
            .isUp = link.isUp,
            .hasCarrier = link.hasCarrier,
            .isWireless = isWireless(link.name),
            .isTunnel = link.isTunnel,
            .hasIPv4 = hasAddress(records, link, false),
            .hasIPv6 = hasAddress(records, link, true),
            .receivedBytes = link.receivedBytes,
            .sentBytes = link.sentBytes});
    }
    return state;
}

} // namespace netvane::net
