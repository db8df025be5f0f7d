#include "platform/system_clock.h"

#include <QTimer>

#include <ctime>

using namespace std::chrono_literals;

namespace netvane::platform {
namespace {

constexpr std::chrono::milliseconds kSoon {250};

/// Those that are told in seconds all tick on whole ones, so that the processor wakes once for
/// several: coarse timers of Qt keep their own moments within the interval.
Qt::TimerType repeatingType(std::chrono::milliseconds interval)
{
    return interval >= 3s ? Qt::VeryCoarseTimer : Qt::CoarseTimer;
}

class EventLoopTimer : public Timer {
public:
    EventLoopTimer(std::chrono::milliseconds interval, bool once, std::function<void()> action)
    {
        m_timer.setInterval(interval);
        m_timer.setSingleShot(once);
        m_timer.setTimerType(once ? Qt::PreciseTimer : repeatingType(interval));
        // The action is copied out first: it may destroy this timer, and itself with it.
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [action = std::move(action)] {
            const auto run = action;
            run();
        });
        m_timer.start();
    }

private:
    QTimer m_timer;
};

} // namespace

std::chrono::system_clock::time_point SystemClock::now() const
{
    return std::chrono::system_clock::now();
}

std::chrono::steady_clock::time_point SystemClock::monotonicNow() const
{
    return std::chrono::steady_clock::now();
}

std::chrono::milliseconds SystemClock::timeAsleep() const
{
    timespec withSleep {};
    timespec without {};
    ::clock_gettime(CLOCK_BOOTTIME, &withSleep);
    ::clock_gettime(CLOCK_MONOTONIC, &without);
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::seconds(withSleep.tv_sec - without.tv_sec)
        + std::chrono::nanoseconds(withSleep.tv_nsec - without.tv_nsec));
}

std::unique_ptr<Timer> SystemClock::repeat(
    std::chrono::milliseconds interval, std::function<void()> action)
{
    return std::make_unique<EventLoopTimer>(interval, false, std::move(action));
}

std::unique_ptr<Timer> SystemClock::after(
    std::chrono::milliseconds delay, std::function<void()> action)
{
    return std::make_unique<EventLoopTimer>(delay, true, std::move(action));
}

void SystemClock::soon(QObject* owner, std::function<void()> action)
{
    if (!m_turn) {
        m_turn = std::make_unique<QTimer>();
        m_turn->setSingleShot(true);
    }
    QObject::connect(
        m_turn.get(), &QTimer::timeout, owner, std::move(action), Qt::SingleShotConnection);
    if (!m_turn->isActive())
        m_turn->start(kSoon);
}

} // namespace netvane::platform
