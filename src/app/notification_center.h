#pragma once

#include <QObject>

namespace netvane::app {

/// What parts of the shell tell each other without knowing each other: the status item speaks, the
/// application delegate listens. Main thread.
class NotificationCenter : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// The user asked for the detailed window.
    void openInWindow();
    /// The status item has shown the popover.
    void popoverDidOpen();
};

} // namespace netvane::app
