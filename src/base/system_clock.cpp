#include "base/system_clock.h"

#include <QTimer>

#include <ctime>

namespace netvane::base {
namespace {

constexpr std::chrono::milliseconds kSoon {250};
/// From this interval on, timers tick on whole seconds.
constexpr std::chrono::milliseconds kShared {3000};

class EventLoopTimer : public Timer {
public:
    EventLoopTimer(std::chrono::milliseconds interval, bool once, std::function<void()> action)
    {
        m_timer.setInterval(interval);
        m_timer.setSingleShot(once);
        m_timer.setTimerType(once ? Qt::PreciseTimer : Qt::CoarseTimer);
        // The action is copied first: it may destroy this timer, and itself with it.
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [action = std::move(action)] {
            const auto run = action;
            run();
        });
        m_timer.start();
    }

private:
    QTimer m_timer;
};

/// Ticks only whole seconds after `epoch`, so that the processor wakes up once for all timers that
/// are due in a second. Qt's very coarse timers are aligned to the seconds of the system clock. If
/// the program starts around a half second, its timers are rounded to two different seconds and
/// stay so.
class WholeSecondTimer : public Timer {
public:
    WholeSecondTimer(std::chrono::steady_clock::time_point epoch,
        std::chrono::milliseconds interval, std::function<void()> action)
        : m_interval(interval)
        , m_due(epoch + std::chrono::round<std::chrono::seconds>(Time::now() - epoch) + interval)
        , m_action(std::move(action))
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { tick(); });
        wind();
    }

private:
    using Time = std::chrono::steady_clock;

    void wind()
    {
        m_timer.start(std::chrono::ceil<std::chrono::milliseconds>(m_due - Time::now()));
    }

    void tick()
    {
        do
            m_due += m_interval;
        while (m_due <= Time::now()); // missed ticks are skipped
        wind();
        const auto run = m_action; // which may destroy this timer
        run();
    }

    const std::chrono::milliseconds m_interval;
    Time::time_point m_due;
    const std::function<void()> m_action;
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
    if (interval >= kShared)
        return std::make_unique<WholeSecondTimer>(m_epoch, interval, std::move(action));
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

} // namespace netvane::base
