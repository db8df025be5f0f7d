#pragma once

#include "netlink/netlink_socket.h"
#include "platform/air.h"

namespace netvane::radio {

/// A rate (NL80211_RATE_INFO_*): the attributes in one of NL80211_STA_INFO_TX_BITRATE and _RX_.
platform::AirRate parseAirRate(netlink::AttributeBytes attributes);

} // namespace netvane::radio
