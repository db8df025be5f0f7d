#pragma once

#include "timeline/bad_hours.h"
#include "timeline/chart.h"

#include <vector>

namespace netvane::timeline {

/// A time in which nothing went through.
struct Outage {
    Milliseconds from = 0;
    std::optional<Milliseconds> to; ///< absent while it lasts
    verdict::Cause cause = verdict::Cause::Unsure;

    bool operator==(const Outage&) const = default;
};

/// "12 s", "5 min", "3 h 20 min"
QString durationText(Milliseconds duration);
/// Local time: "Tue 24 Nov"
QString dayText(Milliseconds at);
/// "Tue 24 Nov, 19:02:10"; the seconds only where they are asked for.
QString timeText(Milliseconds at, bool hasSeconds = false);
/// "19:02:10 to 19:07:00, 5 min"; the day again where it ends on another one.
QString spanText(const Outage& outage);

/// How one part of the way was in a period.
struct PathFigures {
    std::optional<double> medianMs;
    std::optional<double> farMs; ///< the 95th percentile
    std::optional<double> lossPercent;
};

/// What a page for a provider tells of.
struct ProviderFacts {
    Milliseconds from = 0;
    Milliseconds to = 0; ///< when the page is made
    double measuredHours = 0;
    QString network; ///< its name, from outside; may be empty
    PathFigures router;
    PathFigures line;
    PathFigures internet;
    std::vector<Outage> outages; ///< all, oldest first
    Week week;
};

/// The page as Markdown, in plain words. It lists the outages that lie behind the user's router and
/// counts the others.
QString providerPage(const ProviderFacts& facts);

} // namespace netvane::timeline
