#pragma once

#include "verdict/evidence.h"
#include "verdict/verdict.h"

namespace netvane::verdict {

/// Makes verdicts calm: a new cause has to stand for a while before it takes the place of the one
/// that is shown, and the figures of a sentence do not change with each packet.
class VerdictKeeper {
public:
    /// The verdict to show from now on, when this was judged. `wallClock` becomes its `since` if
    /// the cause is new.
    const Verdict& take(
        Verdict judged, TimePoint now, std::chrono::system_clock::time_point wallClock);
    const Verdict& shown() const { return m_shown; }

private:
    std::chrono::milliseconds holdAgainst(const Verdict& judged) const;
    void show(Verdict judged, TimePoint now);

    Verdict m_shown;
    TimePoint m_shownAt; ///< when its sentence was made
    bool m_isFirst = true;
    Cause m_rival = Cause::Unsure;
    std::optional<TimePoint> m_rivalSince;
};

} // namespace netvane::verdict
