#pragma once

#include "demo/scene.h"
#include "diagnostics/speed_test_result.h"
#include "platform/network_scanner.h"

namespace netvane::demo {

// What the demonstration shows. Names and addresses are made up, those of the internet from the
// ranges that documentation may use (RFC 5737).

/// The scenes in the order in which they follow one another.
std::vector<Scene> scenes();

/// What a scan finds, whatever the scene.
std::vector<platform::NearbyNetwork> nearbyNetworks();

/// A router on the way to any host.
struct Hop {
    QString address; ///< empty: it answers nobody
    double milliseconds = 0;
};

/// All but the host itself, which is the last hop and `kTargetTime` away.
std::vector<Hop> hops();
inline constexpr double kTargetTime = 14.2; ///< ms

/// Newest first, the last one before `now`.
std::vector<diagnostics::SpeedTestResult> earlierSpeedTests(
    std::chrono::system_clock::time_point now);

} // namespace netvane::demo
