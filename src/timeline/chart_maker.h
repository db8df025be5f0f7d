#pragma once

#include "timeline/chart.h"
#include "timeline/outages.h"
#include "timeline/spikes.h"

namespace netvane::timeline {

/// What is remembered of a minute or longer. What was not measured is absent.
struct Minute {
    Milliseconds at = 0; ///< its begin
    PathFigures router;
    PathFigures line;
    PathFigures internet;
    std::optional<double> signalDbm;
    std::optional<double> rateMbps;
    std::optional<verdict::Cause> cause;
    verdict::Severity severity = verdict::Severity::Fine;
};

struct ChartRange {
    Milliseconds from = 0;
    Milliseconds to = 0;
    Milliseconds step = 60'000; ///< whole minutes

    bool operator==(const ChartRange&) const = default;
};

/// What is remembered of a time, each oldest first.
struct Remembered {
    std::vector<Minute> minutes;
    std::vector<Mark> marks;
    std::vector<RoundTrip> trips; ///< to the internet, each packet, where they were kept
    std::vector<RadioPause> pauses;
};

/// Takes minutes together so that each lane has a point a step: the median of the medians, the
/// highest of the 95th percentiles, the mean of losses and levels, and the worst verdict. A spike
/// that comes from a pause of the radio is a mark that says so: "Internet 240 ms instead of 8 ms: a
/// scan for networks".
Chart chartOf(const Remembered& remembered, const ChartRange& range);

} // namespace netvane::timeline
