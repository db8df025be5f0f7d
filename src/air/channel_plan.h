#pragma once

#include "platform/air.h"

#include <vector>

namespace netvane::air {

using platform::AirChannel;
using platform::AirNetwork;
using platform::AirSpan;
using platform::ChannelBand;

/// The bands in which networks are, lowest first.
inline constexpr ChannelBand kBands[]
    = {ChannelBand::TwoGHz, ChannelBand::FiveGHz, ChannelBand::SixGHz};

/// A stretch of the spectrum, in MHz.
struct Range {
    int low = 0;
    int high = 0;

    int width() const { return high - low; }
    bool operator==(const Range&) const = default;
};

/// What a network covers: its width around its centre, 20 MHz around the primary channel where
/// these are not known. Two ranges for 80+80 MHz. Never narrower than 20 MHz.
std::vector<Range> rangesOf(const AirSpan& span);

/// The common part in thousandths of the narrower one: 1000 where one lies in the other.
int overlap(const Range& one, const Range& other);

/// A channel that an access point can be set to.
struct Block {
    int number = 0; ///< of the primary channel to set
    Range range;

    bool operator==(const Block&) const = default;
};
/// The channels of this width in MHz by the standard's plan (IEEE 802.11-2020, Annex E; 802.11be
/// for 320 MHz), lowest first. In 2.4 GHz only 1, 6 and 11, always of 20 MHz; in 6 GHz only those
/// with a primary channel at which clients look for networks (the preferred scanning channels).
std::vector<Block> blocks(ChannelBand band, int widthMhz);

} // namespace netvane::air
