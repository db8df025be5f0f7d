#pragma once

#include "base/clock.h"

#include <QTimer>

namespace netvane::base {

/// The clocks of the system, and timers of the main thread's event loop.
class SystemClock : public Clock {
public:
    std::chrono::system_clock::time_point now() const override;
    std::chrono::steady_clock::time_point monotonicNow() const override;
    /// CLOCK_BOOTTIME less CLOCK_MONOTONIC.
    std::chrono::milliseconds timeAsleep() const override;
    std::unique_ptr<Timer> repeat(
        std::chrono::milliseconds interval, std::function<void()> action) override;
    std::unique_ptr<Timer> after(
        std::chrono::milliseconds delay, std::function<void()> action) override;
    void soon(QObject* owner, std::function<void()> action) override;

private:
    const std::chrono::steady_clock::time_point m_epoch = std::chrono::steady_clock::now();
    std::unique_ptr<QTimer> m_turn; ///< for all calls of `soon`
};

} // namespace netvane::base
