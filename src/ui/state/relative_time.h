#pragma once

#include "base/clock.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace netvane::ui {

/// How long ago something was, in whole units rounded down: "12 sec ago", "5 min ago", "3 hr ago",
/// "2 days ago". What lies ahead, as it does after the clock was set back, was "0 sec ago".
QString relativeTime(std::chrono::system_clock::duration elapsed);

/// How much later that text is another one; more than nothing.
std::chrono::milliseconds untilRelativeTimeChanges(std::chrono::system_clock::duration elapsed);

/// Keeps such texts true while they can be seen: has them made anew when they come into sight and
/// when one of them says something else, and does nothing in between. Main thread.
class RelativeTimes {
public:
    using TimePoint = std::chrono::system_clock::time_point;

    /// However long a text stays true, it is looked at so often: the wall clock may have been set,
    /// and timers stand still while the machine sleeps.
    static constexpr std::chrono::milliseconds longestWait {60'000};

    /// `update` makes the texts and ends with `follow`. The clock outlives this.
    RelativeTimes(base::Clock& clock, std::function<void()> update);

    bool isShown() const { return m_isShown; }
    /// Calls `update` when the texts come into sight.
    void setShown(bool isShown);

    QString text(TimePoint time) const { return relativeTime(m_clock.now() - time); }
    /// These are the times that the texts tell of; calls `update` when the first text is due.
    void follow(const std::vector<TimePoint>& times);

private:
    base::Clock& m_clock;
    std::function<void()> m_update;
    std::unique_ptr<base::Timer> m_nextUpdate;
    bool m_isShown = false;
};

} // namespace netvane::ui
