#pragma once

// This room judges the air: whether another channel would help, and whether another access point of
// the same network would. It is pure: readings of the platform go in, advice comes out. It knows no
// timer and starts no scan.

#include "air/channel_plan.h"

#include <optional>

namespace netvane::air {

struct Surroundings {
    std::vector<AirNetwork> networks;
    std::vector<AirChannel> channels; ///< of the adapter, under the country's rules
    platform::AirChange change; ///< of the link's channel
    bool wasScanned = false; ///< a scan of all channels ended within `kFresh`
};

/// A share of the time that others send on a channel, in thousandths.
using Airtime = int;

/// Whether an access point of ours should use another channel of its band.
struct ChannelAdvice {
    enum class Kind {
        NoAccessPoint, ///< ours is not in this band
        NothingHeard, ///< nobody looked at the other channels
        RulesUnknown, ///< no channel that is known to be allowed
        Stay, ///< none is clearly quieter
        Move, ///< to `best`
    };
    ChannelBand band = ChannelBand::Unknown;
    Kind kind = Kind::NoAccessPoint;
    int channel = 0; ///< ours
    Airtime airtime = 0; ///< there
    std::optional<Block> best; ///< the quietest of the others
    Airtime bestAirtime = 0;
    bool hasRadar = false; ///< the quietest one is a radar channel

    bool operator==(const ChannelAdvice&) const = default;
};
/// By the rule in docs/decisions/air.md.
ChannelAdvice adviseChannel(ChannelBand band, const Surroundings& surroundings);

/// "Channel 44 is quieter: ..." or why there is no advice; for users.
QString sentence(const ChannelAdvice& advice);

/// "2.4 GHz"
QString bandName(ChannelBand band);

} // namespace netvane::air
