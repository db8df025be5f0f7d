#pragma once

#include "bus/bus_link.h"
#include "simulated/manual_clock.h"

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

namespace netvane::test {

/// A message bus (dbus-daemon) of the test's own, whose address stays the same when it is stopped
/// and started again. Anybody may own any name on it. Ends with its owner.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus() { stop(); }

    QString address() const { return QStringLiteral("unix:path=") + path(QStringLiteral("bus")); }
    /// Once it is started again, runs `command` for who calls `name` while nobody owns it.
    void setActivatable(const QString& name, const QString& command);

    /// True once it takes connections.
    bool start();
    /// Ends it at once; the connections only close.
    void stop();
    /// Connections are still made but nobody answers on them, until it is resumed.
    void suspend() { signalDaemon(SIGSTOP); }
    void resume() { signalDaemon(SIGCONT); }

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QString& text);
    void signalDaemon(int number);

    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// A private bus that stands for the session or the system bus, and what a link to it needs. One of
/// each kind in a process: libdbus reads the address once.
struct BusFixture {
    /// Starts the bus and sets its address in the environment.
    explicit BusFixture(QDBusConnection::BusType type = QDBusConnection::SessionBus);
    ~BusFixture() { queue.waitForDone(); }

    std::unique_ptr<bus::BusLink> makeLink()
    {
        return std::make_unique<bus::BusLink>(type, clock, queue);
    }

    const QDBusConnection::BusType type;
    PrivateBus bus;
    simulated::ManualClock clock;
    base::WorkQueue queue;
};

} // namespace netvane::test
