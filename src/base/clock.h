#pragma once

// This room holds what every other room uses: time and timers, the log, background work, results
// that may be a failure, files and texts. It knows Qt Core and the system, and nothing of networks.
// What only one room needs stands in that room.

#include <chrono>
#include <functional>
#include <memory>

class QObject;

namespace netvane::base {

/// When the result of background work is delivered.
enum class Delivery {
    Immediate,
    Batched, ///< together with others (`Clock::soon`), so that the processor wakes up once for all
};

/// A timer that runs; destroying it stops it. May be destroyed from inside its own action.
class Timer {
public:
    virtual ~Timer() = default;
};

/// Time, and everything that happens after some of it. Main thread, except the readings, which any
/// thread may take.
class Clock {
public:
    virtual ~Clock() = default;

    /// For stamps that people see. May jump.
    virtual std::chrono::system_clock::time_point now() const = 0;
    /// For durations and throttles. Never goes back; stands still while the machine sleeps.
    virtual std::chrono::steady_clock::time_point monotonicNow() const = 0;
    /// How long the machine has slept since it was started: what `monotonicNow` missed. Right to a
    /// few milliseconds.
    virtual std::chrono::milliseconds timeAsleep() const = 0;
    /// For intervals that people live through, asleep or not: a pause between notifications.
    std::chrono::steady_clock::time_point nowWithSleep() const
    {
        return monotonicNow() + timeAsleep();
    }

    /// Runs `action` every `interval`, the first time one interval from now. From three seconds on
    /// all ticks may be up to half a second early or late, so that wake-ups coincide; shorter ones
    /// each by up to a twentieth.
    [[nodiscard]] virtual std::unique_ptr<Timer> repeat(
        std::chrono::milliseconds interval, std::function<void()> action)
        = 0;
    /// Runs `action` once, `delay` from now, and not a millisecond sooner.
    [[nodiscard]] virtual std::unique_ptr<Timer> after(
        std::chrono::milliseconds delay, std::function<void()> action)
        = 0;
    /// Runs `action` within a quarter of a second, in one turn with all others that were asked for
    /// by then: for what can wait that long, so that the processor wakes up once for several.
    /// Never inside this call; not once `owner` is gone.
    virtual void soon(QObject* owner, std::function<void()> action) = 0;
};

/// Whether the machine slept between two readings of `timeAsleep`.
inline bool hasSlept(std::chrono::milliseconds before, std::chrono::milliseconds after)
{
    constexpr std::chrono::milliseconds kShortestSleep {500}; // far above what the readings differ
    return after - before >= kShortestSleep;
}

} // namespace netvane::base
