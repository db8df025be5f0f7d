// The kernel's routes and next hops: the router that they lead to is an address.
#include "fuzz_target.h"
#include "net/route_messages.h"

#include <QHostAddress>

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr size_t kLongestMessage = 256;
    std::vector<net::RouteRecord> routes;
    std::vector<net::NextHopRecord> nextHops;
    while (input.remaining_bytes() > 0) {
        const bool isRoute = input.ConsumeBool();
        const QByteArray message = fuzz::takeBytes(input, kLongestMessage);
        if (!isRoute) {
            if (auto hop = net::parseNextHop(fuzz::asBytes(message)))
                nextHops.push_back(*hop);
        } else if (auto route = net::parseRoute(fuzz::asBytes(message))) {
            routes.push_back(*route);
        }
    }
    if (const auto router = net::defaultRouterOf(routes, nextHops))
        fuzz::require(
            QHostAddress(*router).protocol() == QAbstractSocket::IPv4Protocol, "an address");
}
