#pragma once

#include "netlink/netlink_socket.h"
#include "platform/air.h"

namespace netvane::radio {

/// NL80211_CMD_NEW_SCAN_RESULTS with the elements.
platform::AirNetwork parseAirNetwork(netlink::AttributeBytes attributes);

/// Each access point once, by its BSSID. Of two entries the one heard last counts, as
/// `nearbyNetworks` has it; the link's own wins over any other.
std::vector<platform::AirNetwork> networksOf(std::vector<platform::AirNetwork> table);

} // namespace netvane::radio
