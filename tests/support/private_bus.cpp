#include "private_bus.h"

#include <QDBusConnectionInterface>
#include <QFile>

#include <sys/prctl.h>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

constexpr int kWaitMs = 10'000;

const QString kConfiguration = uR"(<busconfig>
  <type>session</type>
  <listen>%1</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%2</servicedir>
  <policy context="default">
    <allow own="*"/>
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
)"_s;

} // namespace

PrivateBus::PrivateBus()
{
    QFile file(m_folder.filePath(u"bus.conf"_s));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qUtf8Printable(file.fileName()));
    file.write(kConfiguration.arg(address(), m_folder.path()).toUtf8());
    m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that is ended from outside leaves nothing behind.
    m_daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

PrivateBus::~PrivateBus()
{
    stop();
}

QString PrivateBus::address() const
{
    return u"unix:path="_s + m_folder.filePath(u"bus"_s);
}

void PrivateBus::setActivatable(const QString& name, const QString& command)
{
    QFile file(m_folder.filePath(name + u".service"_s));
    if (command.isEmpty()) {
        file.remove();
        return;
    }
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qUtf8Printable(file.fileName()));
    file.write(u"[D-BUS Service]\nName=%1\nExec=%2\n"_s.arg(name, command).toUtf8());
}

bool PrivateBus::start()
{
    if (isRunning())
        return true;
    m_daemon.start(u"dbus-daemon"_s,
        {u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
            u"--config-file="_s + m_folder.filePath(u"bus.conf"_s)});
    // It tells its address when it listens.
    return m_daemon.waitForReadyRead(kWaitMs) && m_daemon.readAllStandardOutput().contains("path=");
}

void PrivateBus::stop()
{
    m_daemon.kill();
    m_daemon.waitForFinished(kWaitMs);
}

void PrivateBus::suspend()
{
    signalDaemon(SIGSTOP);
}

void PrivateBus::resume()
{
    signalDaemon(SIGCONT);
}

void PrivateBus::signalDaemon(int number)
{
    if (isRunning()) // no process has the id 0, but kill(2) then means ourselves
        ::kill(pid_t(m_daemon.processId()), number);
}

BusFixture::BusFixture(QDBusConnection::BusType busType)
    : type(busType)
{
    const bool isSystem = type == QDBusConnection::SystemBus;
    qputenv(
        isSystem ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    if (!bus.start())
        qFatal("no dbus-daemon");
}

BusFixture::~BusFixture()
{
    queue.waitForDone();
}

std::unique_ptr<bus::BusLink> BusFixture::makeLink()
{
    return std::make_unique<bus::BusLink>(type, clock, queue);
}

bool BusFixture::isOwned(const QString& name) const
{
    const QString observer = u"observer"_s;
    const bool isOwned = QDBusConnection::connectToBus(bus.address(), observer)
                             .interface()
                             ->isServiceRegistered(name);
    QDBusConnection::disconnectFromBus(observer);
    return isOwned;
}

} // namespace netvane::test
