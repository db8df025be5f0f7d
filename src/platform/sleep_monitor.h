#pragma once

#include <QObject>

namespace netvane::platform {

/// Signals when the machine wakes from sleep. Main thread.
class SleepMonitor : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// The machine slept and is awake again. Once for each sleep.
    void didWake();
};

} // namespace netvane::platform
