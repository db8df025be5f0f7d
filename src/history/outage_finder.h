#pragma once

#include "history/records.h"

namespace netvane::history {

/// Finds the times in which nothing on the internet answered, from single probes in the order in
/// which they were asked. One lost packet is no outage.
class OutageFinder {
public:
    /// Any host on the internet answered a question that was asked then, or did not. The
    /// connection was tried more than once before that.
    void takeInternet(Milliseconds askedAt, bool isAnswered);
    /// The same of the first router behind the user's; a datagram that is sent once.
    void takeLine(Milliseconds askedAt, bool isAnswered);
    /// The cause of the verdict meanwhile.
    void takeCause(const QString& cause);
    /// The machine slept or the clock was set: what was before ended with the last probe.
    void interrupt();

    /// Outages since the last call. One that goes on is among them each time, until it ends, up to
    /// the last probe that nobody answered.
    std::vector<Outage> take();

private:
    bool isOutage() const;

    std::optional<Outage> m_current; ///< since the first probe without an answer
    int m_unanswered = 0;
    bool m_isLineSilent = false; ///< one of its questions was lost since then
    int m_lineAnswers = 0; ///< of the line, without a loss
    std::vector<Outage> m_ended;
};

} // namespace netvane::history
