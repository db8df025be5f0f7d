#pragma once

#include "diagnostics/speed_test_result.h"
#include "platform/location_manager.h"
#include "platform/network_scanner.h"
#include "platform/wifi_client.h"

#include <QUrl>

#include <chrono>
#include <vector>

namespace netvane::demo {

// The content of the demonstration. Names and addresses are invented; internet addresses are from
// the ranges for documentation (RFC 5737).

/// One situation of a user, as plain data. Each reading or probe takes the next entry of its list,
/// from the scene's beginning and repeatedly.
struct Scene {
    QString name; ///< for the command line
    QString title; ///< for the window title
    std::chrono::seconds duration {40}; ///< zero: shown only when asked for

    bool hasRadio = true;
    platform::LinkReading link; ///< without the values of the three lists
    std::vector<int> signalDbm;
    std::vector<int> noiseDbm;
    std::vector<double> rateMbps;
    double failedPercent = 0; ///< of the packets on the air

    // Round trips in ms; absent is a lost probe. An empty list loses all.
    std::vector<std::optional<double>> routerTimes;
    std::vector<std::optional<double>> internetTimes;
    double timeUnderLoad = 0; ///< ms that a transfer adds to both
    std::optional<std::chrono::microseconds> lookupTime; ///< absent: no name is resolved
    std::optional<QUrl> portal; ///< the login page of a captive portal
    double downloadMbps = 0;
    double uploadMbps = 0;

    QString router;
    QStringList dnsServers;
    QStringList interfaces {QStringLiteral("lo"), QStringLiteral("wlan0")};
    platform::AuthorizationStatus permission = platform::AuthorizationStatus::AuthorizedAlways;
    bool isIntroduced = true; ///< the user has been through the introduction
};

/// The scenes in the order in which they follow one another.
std::vector<Scene> scenes();

/// What a scan finds, whatever the scene.
std::vector<platform::NearbyNetwork> nearbyNetworks();

/// A router on the way to any host.
struct Hop {
    QString address; ///< empty: no answer
    double milliseconds = 0;
};

/// All but the host itself, which is the last hop and `kTargetTime` away.
std::vector<Hop> hops();
inline constexpr double kTargetTime = 14.2; ///< ms

/// Newest first, the last one before `now`.
std::vector<diagnostics::SpeedTestResult> earlierSpeedTests(
    std::chrono::system_clock::time_point now);

} // namespace netvane::demo
