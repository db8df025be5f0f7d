#pragma once

#include "bus/bus_link.h"
#include "simulated/manual_clock.h"

#include <QProcess>
#include <QTemporaryDir>

namespace netvane::test {

/// A message bus (dbus-daemon) of the test's own, whose address stays the same when it is stopped
/// and started again. Anybody may own any name on it. Ends with its owner.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();

    QString address() const;

    /// Once it is started again, runs `command` for who calls `name` while nobody owns it; nothing
    /// any more when that is empty.
    void setActivatable(const QString& name, const QString& command);

    /// True once it takes connections.
    bool start();
    /// Ends it at once; the connections only close.
    void stop();
    bool isRunning() const { return m_daemon.state() == QProcess::Running; }

    /// Connections are still made but nobody answers on them, until it is resumed.
    void suspend();
    void resume();

private:
    void signalDaemon(int number);

    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// A private bus that stands for the session or the system bus, and what a link to it needs. One of
/// each kind in a process: libdbus reads the address once.
struct BusFixture {
    /// Starts the bus and sets its address in the environment.
    explicit BusFixture(QDBusConnection::BusType type = QDBusConnection::SessionBus);
    ~BusFixture();

    std::unique_ptr<bus::BusLink> makeLink();
    /// As another program sees it, without running the event loop.
    bool isOwned(const QString& name) const;

    const QDBusConnection::BusType type;
    PrivateBus bus;
    simulated::ManualClock clock;
    base::WorkQueue queue;
};

} // namespace netvane::test
