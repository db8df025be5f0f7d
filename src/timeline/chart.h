#pragma once

#include "verdict/cause.h"

#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace netvane::timeline {

/// Milliseconds since 1970 (UTC). A drawing needs no more, and QML knows no other time.
using Milliseconds = double;

inline Milliseconds millisecondsOf(std::chrono::system_clock::time_point time)
{
    return Milliseconds(
        std::chrono::floor<std::chrono::milliseconds>(time).time_since_epoch().count());
}

/// The history reaches back so far.
inline constexpr Milliseconds kKept = 30 * 86'400'000.0;

/// A value in the time from `at` on, for as long as a step of its chart.
struct LanePoint {
    Milliseconds at = 0;
    float value = 0; ///< the median, where there were several
    float far = 0; ///< the 95th percentile of a delay; else as `value`

    bool operator==(const LanePoint&) const = default;
};

/// One of the values below each other.
struct Lane {
    enum class Kind {
        Delay, ///< a line with a band up to the 95th percentile, from zero
        Loss, ///< bars from zero
        Level, ///< a line in a range of its own
    };
    QString name; ///< "Router"
    QString unit; ///< "ms", "%", "dBm", "Mbps"
    Kind kind = Kind::Delay;
    std::vector<LanePoint> points; ///< oldest first; what is absent leaves a gap
    double bottom = 0; ///< the value at the lower edge
    double top = 1; ///< the value at the upper edge; more than `bottom`

    bool operator==(const Lane&) const = default;
};

/// A stretch of time with one verdict.
struct Band {
    Milliseconds from = 0;
    Milliseconds to = 0;
    verdict::Cause cause = verdict::Cause::Unsure;
    verdict::Severity severity = verdict::Severity::Notice;

    bool operator==(const Band&) const = default;
};

/// Something that happened, across all lanes.
struct Mark {
    enum class Kind { Link, Roam, Scan, Network, System };
    Milliseconds at = 0;
    Kind kind = Kind::System;
    QString text; ///< "Changed to another access point"

    bool operator==(const Mark&) const = default;
};

/// A part of the history as it is drawn.
struct Chart {
    Milliseconds from = 0;
    Milliseconds to = 0;
    Milliseconds step = 60'000; ///< from one point of a lane to the next
    std::vector<Band> verdicts; ///< oldest first; times without a verdict are left out
    std::vector<Lane> lanes;
    std::vector<Mark> marks; ///< oldest first

    bool operator==(const Chart&) const = default;
};

/// The point of the lane that holds this moment; null in a gap.
const LanePoint* pointAt(const Lane& lane, Milliseconds moment, Milliseconds step);
const Band* bandAt(const Chart& chart, Milliseconds moment);

/// Whether marks of this kind are shown in so long a time. Scans come every few minutes and roams
/// every few hours: over a longer time they would cover all else.
bool isShown(Mark::Kind kind, Milliseconds span);
/// The shown marks that are as near to the moment as an eye can tell.
std::vector<Mark> marksNear(const Chart& chart, Milliseconds moment, Milliseconds span);

/// A round number of at least `largest`: 1, 2 or 5 times a power of ten.
double roundTop(double largest);

/// The places of labels on a time axis, at full minutes, hours or days of local time, `most` of
/// them at most.
struct Tick {
    Milliseconds at = 0;
    QString text; ///< "18:00", "Tue 24"

    bool operator==(const Tick&) const = default;
};
std::vector<Tick> ticks(Milliseconds from, Milliseconds to, int most);

} // namespace netvane::timeline
