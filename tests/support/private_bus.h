#pragma once

#include "bus/bus_link.h"
#include "simulated/manual_clock.h"

#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

namespace netvane::test {

/// A private message bus (dbus-daemon) for a test. Its address stays the same after a restart. Any
/// connection may own any name. Ends with its owner.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus() { stop(); }

    QString address() const { return QStringLiteral("unix:path=") + path(QStringLiteral("bus")); }
    /// After the next start, the bus runs `command` when `name` is called and has no owner.
    void setActivatable(const QString& name, const QString& command);

    /// True when it accepts connections.
    bool start();
    /// Kills it; the connections are closed without notice.
    void stop();
    /// Accepts connections but does not answer, until `resume`.
    void suspend() { signalDaemon(SIGSTOP); }
    void resume() { signalDaemon(SIGCONT); }

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QString& text);
    void signalDaemon(int number);

    QTemporaryDir m_folder;
    QProcess m_daemon;
};

/// A private bus in the place of the session or the system bus, with what a link to it needs. One
/// of each kind in a process: libdbus reads the address once.
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
