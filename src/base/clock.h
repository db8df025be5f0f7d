#pragma once

// This room holds what every other room uses: time and timers, the log, background work, results
// that may be a failure, files and texts. It depends on Qt Core and the system only. Code that only
// one room needs belongs in that room.

#include <chrono>
#include <functional>
#include <memory>

class QObject;

namespace netvane::base {

/// When the result of background work is delivered.
enum class Delivery {
    Immediate,
    Batched, ///< together with others (`Clock::soon`), so that the processor wakes up once
};

/// A timer that runs; destroying it stops it. May be destroyed from inside its own action.
class Timer {
public:
    virtual ~Timer() = default;
};

/// The time, timers and delayed calls. Tests replace it by a clock that they advance. Main thread;
/// the three readings on any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// For time stamps that people see. Jumps when the clock is set.
    virtual std::chrono::system_clock::time_point now() const = 0;
    /// For durations and throttles. Never goes back; stops while the machine sleeps.
    virtual std::chrono::steady_clock::time_point monotonicNow() const = 0;
    /// The total sleep time since boot, which `monotonicNow` leaves out. Exact to a few
    /// milliseconds.
    virtual std::chrono::milliseconds timeAsleep() const = 0;
    /// For intervals that people live through, asleep or not: a pause between notifications.
    std::chrono::steady_clock::time_point nowWithSleep() const
    {
        return monotonicNow() + timeAsleep();
    }

    /// Runs `action` every `interval`, first after one interval. With an interval of three seconds
    /// or more, all ticks may be half a second early or late, so that wake-ups coincide; with a
    /// shorter one, each tick by a twentieth of the interval.
    [[nodiscard]] virtual std::unique_ptr<Timer> repeat(
        std::chrono::milliseconds interval, std::function<void()> action)
        = 0;
    /// Runs `action` once, `delay` from now, and not a millisecond sooner.
    [[nodiscard]] virtual std::unique_ptr<Timer> after(
        std::chrono::milliseconds delay, std::function<void()> action)
        = 0;
    /// Runs `action` within a quarter of a second, together with all others that were requested
    /// until then, so that the processor wakes up once for several. Never inside this call, and
    /// never after `owner` is destroyed.
    virtual void soon(QObject* owner, std::function<void()> action) = 0;
};

/// Whether the machine slept between two readings of `timeAsleep`.
inline bool hasSlept(std::chrono::milliseconds before, std::chrono::milliseconds after)
{
    constexpr std::chrono::milliseconds kShortestSleep {500}; // far above the error of the readings
    return after - before >= kShortestSleep;
}

} // namespace netvane::base
