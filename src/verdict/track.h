#pragma once

#include "verdict/evidence.h"

#include <initializer_list>

namespace netvane::verdict {

/// What the last questions to one place say together.
struct Track {
    int asked = 0;
    int unanswered = 0; ///< in a row, up to now
    std::optional<double> medianMs; ///< of the last answers that no packet had to be sent again for
    std::optional<double> leastMs;
    std::optional<TimePoint> lastAnswer; ///< when the question was asked that was answered last

    bool hasAnswered() const { return lastAnswer.has_value(); }
    /// The last question was answered.
    bool isAlive() const { return hasAnswered() && unanswered == 0; }
};
Track trackOf(const Outcomes& outcomes);

/// How many packets were lost among the last questions to some places.
struct Loss {
    int packets = 0;
    int lost = 0;
    int cleanRun = 0; ///< questions without a loss, in a row, up to now

    double percent() const { return packets == 0 ? 0 : 100.0 * lost / packets; }
    /// Too many to be chance, and not over yet.
    bool isBad() const;
};
/// Places that never answered are left out: they may never do.
Loss lossOf(std::initializer_list<const Outcomes*> places);

} // namespace netvane::verdict
