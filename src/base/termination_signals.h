#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace netvane::base {

/// Turns SIGINT, SIGTERM and SIGHUP (sent by a terminal, a service manager and a desktop session to
/// end a program) into a Qt signal, so that the program ends in order and stores its settings.
/// Signals that were ignored at the start of the program stay ignored. A process that is still
/// there three seconds later ends at once with status 1: the window system or a bus may block the
/// main thread for ever. After its destruction all three are ignored. One for the process; main
/// thread.
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
