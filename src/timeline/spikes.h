#pragma once

#include "timeline/chart.h"

namespace netvane::timeline {

/// The time that one packet took.
struct RoundTrip {
    Milliseconds at = 0;
    double milliseconds = 0;
};

/// Something that keeps the radio from sending for a moment.
struct RadioPause {
    Milliseconds from = 0;
    Milliseconds to = 0; ///< equal to `from` where it has no length
    Mark::Kind kind = Mark::Kind::Scan; ///< or a roam
};

/// A round trip of more than three times the median of those around it.
struct Spike {
    Milliseconds at = 0;
    double milliseconds = 0;
    double usual = 0; ///< that median
    std::optional<Mark::Kind> cause; ///< absent where no pause of the radio was near

    bool operator==(const Spike&) const = default;
};

/// A pause this near to a packet is what made it late.
inline constexpr Milliseconds kNear = 2000;

/// Both are oldest first.
std::vector<Spike> spikes(
    const std::vector<RoundTrip>& trips, const std::vector<RadioPause>& pauses);

} // namespace netvane::timeline
