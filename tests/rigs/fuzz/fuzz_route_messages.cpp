// rtnetlink's answers about links, addresses, neighbours and routes. They quote what DHCP servers,
// routers and VPNs asked for.
#include "fuzz_target.h"
#include "net/network_state.h"

#include <QHostAddress>

namespace netvane::fuzz {
namespace {

void requireAddress(const QString& text)
{
    require(text.isEmpty() || !QHostAddress(text).isNull(), "an address is one, or absent");
}

} // namespace

void tryInput(FuzzedDataProvider& input)
{
    std::vector<net::RouteRecord> routes;
    std::vector<net::NextHopRecord> nextHops;
    std::vector<net::LinkRecord> tunnels;
    while (input.remaining_bytes() > 0 && routes.size() + nextHops.size() < 16) {
        const QByteArray bytes = takeBytes(input, 512);
        const auto message = asBytes(bytes);
        if (const auto route = net::parseRoute(message)) {
            routes.push_back(*route);
            requireAddress(route->gateway ? route->gateway->address : QString());
        }
        if (auto nextHop = net::parseNextHop(message)) {
            require(nextHop->members.size() * 8 <= size_t(bytes.size()), "no member is made up");
            nextHops.push_back(std::move(*nextHop));
        }
        if (const auto link = net::parseLink(message); link && link->isTunnel)
            tunnels.push_back(*link);
        if (const auto link = net::parseInterfaceLink(message))
            require(!link->interface.name.isEmpty(), "an interface has a name");
        (void)net::parseAddress(message);
        if (const auto neighbour = net::parseNeighbour(message))
            requireAddress(neighbour->address);
        if (const auto way = net::parseWay(message))
            requireAddress(way->gateway);
    }
    const auto gateway = net::defaultGatewayOf(routes, nextHops, tunnels);
    require(!gateway || !gateway->address.isEmpty(), "a router has an address");
}

} // namespace netvane::fuzz
