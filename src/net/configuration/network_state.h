#pragma once

#include "net/configuration/link_messages.h"
#include "net/configuration/route_messages.h"
#include "platform/network_configuration.h"

#include <functional>

namespace netvane::net {

/// What the kernel said about routes of one family.
struct FamilyRoutes {
    std::optional<Gateway> chosen; ///< where the kernel sends what is for the internet
    std::optional<Gateway> pastTunnels; ///< where it would without tunnels
};

/// What the kernel said about the network.
struct NetworkRecords {
    std::vector<LinkRecord> links;
    std::vector<AddressRecord> addresses;
    FamilyRoutes ipv4;
    FamilyRoutes ipv6;
    std::optional<std::uint16_t> neighbour; ///< NUD_ number of the gateway of `physicalGateway`
};

/// The indices of the links that are tunnels.
std::vector<std::uint32_t> tunnelsAmong(const std::vector<LinkRecord>& links);

/// A link to a modem looks like the tunnel of a VPN (PPP). With nothing beside it that could carry
/// it, it is no tunnel but the way out itself; corrects the records.
void settleModems(NetworkRecords& records);

/// Where the network's own router is; absent without any.
std::optional<Gateway> physicalGateway(const NetworkRecords& records);

/// The records as the other rooms know them. `isWireless` tells by the name of a link.
platform::NetworkState networkState(
    const NetworkRecords& records, const std::function<bool(const QString& name)>& isWireless);

} // namespace netvane::net
