#pragma once

#include "verdict/evidence.h"

#include <initializer_list>

namespace netvane::verdict {

/// What the last questions to one place say together.
struct Track {
    int asked = 0;
    int unanswered = 0; ///< in a row, up to now
    int timed = 0; ///< answers that no packet had to be sent again for
    std::optional<double> medianMs; ///< of the last answers that no packet had to be sent again for
    std::optional<double> leastMs;
    double uneven = 1; ///< by which factor the last times both rise and fall
    std::optional<TimePoint> lastAnswer; ///< when the question was asked that was answered last

    bool hasAnswered() const { return lastAnswer.has_value(); }
    /// The last question was answered.
    bool isAlive() const { return hasAnswered() && unanswered == 0; }
};
Track trackOf(const Outcomes& outcomes);

/// How many packets of a handshake were lost, of those that were sent again. One is sent again,
/// too, when its answer only takes long: then the time does not fit the usual one and the waits of
/// the kernel (RFC 6298, and one second each from Linux 6.5 on). `before`: earlier questions to the
/// same place.
int lostInHandshake(const Outcomes& before, double milliseconds, int sentAgain);

/// Packets that were sent to some places, and lost.
struct Loss {
    int packets = 0;
    int lost = 0;

    double percent() const { return packets == 0 ? 0 : 100.0 * lost / packets; }
};

/// The losses among the last questions to some places, from the first one that may belong to a
/// fault that goes on. An outage, when a place answers nothing for a while, is no loss in this
/// sense.
struct LossTrack : Loss {
    std::optional<TimePoint> since; ///< the first of these losses
    bool isBad = false; ///< too many to be chance, and not over yet
};
/// Places that never answered are left out: they may never do.
LossTrack lossOf(std::initializer_list<const Outcomes*> places);

/// What was sent to a place since then, and lost.
Loss lossSince(const Outcomes& outcomes, TimePoint since);

} // namespace netvane::verdict
