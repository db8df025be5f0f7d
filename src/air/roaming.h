#pragma once

#include "platform/air.h"

namespace netvane::air {

using platform::AirLink;
using platform::AirNetwork;

/// An access point of the network that we are in, heard much better than ours.
struct BetterAccessPoint {
    AirNetwork network;
    int ourSignalDbm = 0;

    bool operator==(const BetterAccessPoint&) const = default;
};
/// The strongest such one, when ours is weak: below -72 dBm rates fall fast. Much better is 10 dB,
/// more than a signal swings by itself, and 6 dB more from a higher band to 2.4 GHz, where every
/// signal is that much stronger. It has the same name and the same kinds of security, and was
/// heard within two minutes. Absent where ours is not among the networks.
std::optional<BetterAccessPoint> betterAccessPoint(
    const AirLink& link, const std::vector<AirNetwork>& networks);

/// "The computer stays with a weak access point: ...", or that none is better; for users.
QString sentence(const std::optional<BetterAccessPoint>& better);

} // namespace netvane::air
