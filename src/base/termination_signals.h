#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace netvane::base {

/// Turns SIGINT, SIGTERM and SIGHUP (the ways in which a terminal, a service manager and a desktop
/// session end a program) into a signal of the event loop, but for those that the program was
/// started with ignored. A process that is still there three seconds later ends at once with
/// status 1: the window system or a bus may hold the main thread for ever. This lasts to the end of
/// the program: once it is gone the signals do nothing. One for the process; main thread.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    void drain();

    QSocketNotifier m_notifier;
};

} // namespace netvane::base
