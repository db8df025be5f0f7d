#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace netvane::test {

/// A message bus (dbus-daemon) of the test's own, at an address that stays the same when it is
/// stopped and started again. Anybody may own any name on it. Ends with its owner.
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
    /// Ends it at once, without a word to those connected.
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

} // namespace netvane::test
