#include "desktop/suspend_watch.h"

#include <QSocketNotifier>

#include <sys/timerfd.h>

#include <limits>
#include <utility>

namespace netvane::desktop {

SuspendWatch::SuspendWatch(const base::Clock& clock)
    : m_clock(clock)
    , m_asleepBefore(clock.timeAsleep())
    , m_timer(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
{
    // Without a descriptor no wake is reported; the next ticks read everything anyway.
    if (m_timer.get() < 0)
        return;
    arm();
    m_notifier = std::make_unique<QSocketNotifier>(m_timer.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SuspendWatch::wallClockJumped);
}

SuspendWatch::~SuspendWatch() = default;

void SuspendWatch::arm()
{
    itimerspec never {};
    never.it_value.tv_sec = std::numeric_limits<time_t>::max();
    ::timerfd_settime(m_timer.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

void SuspendWatch::wallClockJumped()
{
    if (m_timer.get() >= 0) {
        // Fails with ECANCELED; the timer is then disarmed.
        quint64 expirations = 0;
        [[maybe_unused]] const auto got = ::read(m_timer.get(), &expirations, sizeof(expirations));
        arm();
    }
    const auto asleep = m_clock.timeAsleep();
    if (base::hasSlept(std::exchange(m_asleepBefore, asleep), asleep))
        Q_EMIT didWake();
}

} // namespace netvane::desktop
