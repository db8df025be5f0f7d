#pragma once

#include "platform/network_scanner.h"
#include "radio/nl80211_messages.h"

#include <chrono>

namespace netvane::radio {

/// The networks of the kernel's scan table in its order, each access point (BSSID) once. One that
/// changed its channel is listed twice until the old entry expires after 30 seconds; one that hides
/// its name may be listed with and without it. The newest entry wins; a name from an older entry
/// is kept.
std::vector<platform::NearbyNetwork> nearbyNetworks(const std::vector<BssRecord>& table);

/// Adds the entries of a table that was read `elapsed` after the first one. The kernel may drop the
/// results of a partial scan at the end of the next one.
void addNewerTable(std::vector<BssRecord>& table, const std::vector<BssRecord>& newer,
    std::chrono::milliseconds elapsed);

} // namespace netvane::radio
