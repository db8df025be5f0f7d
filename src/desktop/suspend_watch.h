#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "platform/sleep_monitor.h"

#include <memory>

class QSocketNotifier;

namespace netvane::desktop {

/// A timer that never expires. The kernel cancels it whenever the wall clock jumps against the
/// monotonic one, as it does at every resume (timerfd_create(2), TFD_TIMER_CANCEL_ON_SET). The boot
/// clock tells whether the jump was a sleep. This needs no bus, no privilege and no wake-up, and it
/// works without logind.
class SuspendWatch final : public platform::SleepMonitor {
    Q_OBJECT

public:
    /// `clock` outlives this.
    explicit SuspendWatch(const base::Clock& clock);
    ~SuspendWatch() override;

    /// The wall clock was set, by a sleep or by somebody.
    void wallClockJumped();

private:
    void arm();

    const base::Clock& m_clock;
    std::chrono::milliseconds m_asleepBefore;
    base::FileDescriptor m_timer;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace netvane::desktop
