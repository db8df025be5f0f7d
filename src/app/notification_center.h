#pragma once

#include <QObject>

namespace netvane::app {

/// Events between parts of the program that do not depend on each other: the status item and the
/// views emit, the application delegate receives. Main thread.
class NotificationCenter : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// The user asked for the detailed window.
    void openInWindow();
    /// The user asked for the window that explains the verdict.
    void explainVerdict();
    /// The user asked for the time line.
    void showTimeLine();
    /// The user asked for the window about the air.
    void showAir();
    /// The status item has shown the popover.
    void popoverDidOpen();
};

} // namespace netvane::app
