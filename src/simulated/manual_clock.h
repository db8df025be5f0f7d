#pragma once

#include "base/clock.h"

#include <atomic>
#include <memory>
#include <vector>

namespace netvane::simulated {

/// A clock that `advance` moves, for tests and for the demonstration's pictures: hours pass without
/// waiting. Timers run inside `advance`, each at its time and in order.
class ManualClock : public base::Clock {
public:
    std::chrono::system_clock::time_point now() const override { return m_wall; }
    std::chrono::steady_clock::time_point monotonicNow() const override { return m_monotonic; }
    std::chrono::milliseconds timeAsleep() const override { return m_asleep; }
    std::unique_ptr<base::Timer> repeat(
        std::chrono::milliseconds interval, std::function<void()> action) override
    {
        return add(interval, interval, std::move(action));
    }
    std::unique_ptr<base::Timer> after(
        std::chrono::milliseconds delay, std::function<void()> action) override
    {
        return add(delay, std::chrono::milliseconds::zero(), std::move(action));
    }
    /// On the next turn of the event loop: such work is not on this clock.
    void soon(QObject* owner, std::function<void()> action) override;

    void advance(std::chrono::milliseconds time);
    /// Sets the wall clock as a user or a time server would, without time passing.
    void setWall(std::chrono::system_clock::time_point wall) { m_wall = wall; }
    /// The machine sleeps: only the wall clock advances.
    void sleep(std::chrono::milliseconds time);
    /// How many timers are running.
    int timerCount() const;

private:
    struct Alarm {
        std::chrono::steady_clock::time_point due;
        std::chrono::milliseconds interval; ///< zero: once
        std::function<void()> action;
        bool running = true;
    };
    class Handle;
    std::unique_ptr<base::Timer> add(std::chrono::milliseconds delay,
        std::chrono::milliseconds interval, std::function<void()> action);
    void moveTo(std::chrono::steady_clock::time_point time);
    std::shared_ptr<Alarm> nextDue(std::chrono::steady_clock::time_point end) const;

    // Read from any thread.
    std::atomic<std::chrono::system_clock::time_point> m_wall {
        std::chrono::system_clock::time_point(std::chrono::seconds(1'700'000'000))};
    std::atomic<std::chrono::steady_clock::time_point> m_monotonic {
        std::chrono::steady_clock::time_point(std::chrono::hours(1))};
    std::atomic<std::chrono::milliseconds> m_asleep {std::chrono::milliseconds::zero()};
    std::vector<std::shared_ptr<Alarm>> m_alarms;
};

} // namespace netvane::simulated
