#pragma once

#include "platform/network_scanner.h"
#include "radio/nl80211_messages.h"

#include <chrono>

namespace netvane::radio {

/// The networks of the kernel's table in its order, each access point (BSSID) once: one that has
/// moved to another channel stands there twice until its old entry is 30 seconds old, one that
/// hides its name possibly with and without it. Of several entries the one heard last counts, with
/// a name that another one knows.
std::vector<platform::NearbyNetwork> nearbyNetworks(const std::vector<BssRecord>& table);

/// Adds what the table held so much later. A service that scans in several goes can have the kernel
/// forget at the end of each what the one before has heard.
void addLater(std::vector<BssRecord>& table, const std::vector<BssRecord>& later,
    std::chrono::milliseconds passed);

} // namespace netvane::radio
