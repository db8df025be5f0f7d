#pragma once

#include "history/records.h"
#include "verdict/evidence.h"
#include "verdict/verdict.h"

#include <array>

namespace netvane::history {

/// Sums up what was measured within a minute. Any one thread.
class MinuteMaker {
public:
    void addProbe(Path path, const verdict::Outcome& outcome);
    void addLookup(const verdict::Outcome& outcome);
    /// Readings of one link follow each other; counters count from the one before.
    void addLink(const platform::LinkReading& link);
    void addVerdict(const verdict::Verdict& verdict);

    /// The minute that begins at this time; absent if nothing was measured. What follows belongs to
    /// the next one.
    std::optional<Minute> finish(Milliseconds at, const QString& network);

private:
    struct Times {
        std::vector<double> milliseconds;
        int packets = 0;
        int lost = 0;
    };
    PathMinute pathOf(const Times& times) const;

    std::array<Times, 3> m_paths;
    std::vector<double> m_lookups;
    int m_failedLookups = 0;
    std::vector<int> m_signals;
    std::optional<platform::LinkReading> m_link; ///< the last one
    double m_retries = 0;
    double m_failed = 0;
    bool m_hasLink = false; ///< in this minute
    std::optional<verdict::Severity> m_severity;
    QString m_cause;
};

} // namespace netvane::history
