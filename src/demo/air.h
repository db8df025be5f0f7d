#pragma once

#include "demo/script.h"
#include "platform/air.h"

namespace netvane::demo {

/// What the radio hears of `nearbyNetworks`, with a link that has these readings. Adapters and
/// networks are there without a link, too.
platform::AirReading airReading(const Scene& scene, const platform::LinkReading& link,
    std::chrono::steady_clock::time_point now);

} // namespace netvane::demo
