#pragma once

#include <QObject>

namespace netvane::platform {

/// Tells when the machine wakes from sleep. Main thread.
class SleepMonitor : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// It slept and is awake again. Once for each sleep; costs nothing in between.
    void didWake();
};

} // namespace netvane::platform
