#include "private_bus.h"

#include <QFile>

#include <sys/prctl.h>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

constexpr int kWaitMs = 10'000;

const QString kConfiguration = uR"(<busconfig>
  <type>session</type><listen>%1</listen><auth>EXTERNAL</auth><servicedir>%2</servicedir>
  <policy context="default">
    <allow own="*"/><allow send_destination="*"/><allow receive_sender="*"/>
  </policy>
</busconfig>
)"_s;

} // namespace

PrivateBus::PrivateBus()
{
    write(u"bus.conf"_s, kConfiguration.arg(address(), m_folder.path()));
    m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // The daemon also ends if the test is killed.
    m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

void PrivateBus::write(const QString& name, const QString& text)
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("cannot write %s", qUtf8Printable(file.fileName()));
}

void PrivateBus::setActivatable(const QString& name, const QString& command)
{
    write(name + u".service"_s, u"[D-BUS Service]\nName=%1\nExec=%2\n"_s.arg(name, command));
}

bool PrivateBus::start()
{
    if (m_daemon.state() == QProcess::Running)
        return true;
    m_daemon.start(u"dbus-daemon"_s,
        {u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
            u"--config-file="_s + path(u"bus.conf"_s)});
    // It prints its address when it listens.
    return m_daemon.waitForReadyRead(kWaitMs) && m_daemon.readAllStandardOutput().contains("path=");
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished(kWaitMs);
}

void PrivateBus::signalDaemon(int number)
{
    if (m_daemon.processId() > 0) // kill(2) takes 0 for this process and its group
        ::kill(pid_t(m_daemon.processId()), number);
}

BusFixture::BusFixture(QDBusConnection::BusType busType)
    : type(busType)
{
    qputenv(
        type == QDBusConnection::SystemBus ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS",
        bus.address().toUtf8());
    if (!bus.start())
        qFatal("no dbus-daemon");
}

} // namespace netvane::test
