#pragma once

#include "platform/location_manager.h"
#include "platform/wifi_client.h"

#include <QUrl>

#include <chrono>
#include <vector>

namespace netvane::demo {

/// One situation that a user may be in, as plain data. Lists are gone through from the scene's
/// beginning, one entry with each reading or probe, over and over.
struct Scene {
    QString name; ///< by which it is asked for
    QString title; ///< for people
    std::chrono::seconds duration {40}; ///< zero: shown only when asked for

    bool hasRadio = true;
    platform::LinkReading link; ///< but for what the three lists say
    std::vector<int> signalDbm;
    std::vector<int> noiseDbm;
    std::vector<double> rateMbps;

    // Round trips in ms; absent is a lost probe. An empty list loses all.
    std::vector<std::optional<double>> routerTimes;
    std::vector<std::optional<double>> internetTimes;
    double timeUnderLoad = 0; ///< ms that a transfer adds to both
    std::optional<std::chrono::microseconds> lookupTime; ///< absent: no name is resolved
    std::optional<QUrl> portal; ///< the page that stands before the internet
    double downloadMbps = 0;
    double uploadMbps = 0;

    QString router;
    QStringList dnsServers;
    QStringList interfaces {QStringLiteral("lo"), QStringLiteral("wlan0")};
    platform::AuthorizationStatus permission = platform::AuthorizationStatus::AuthorizedAlways;
    bool isIntroduced = true; ///< the user has been through the introduction
};

} // namespace netvane::demo
