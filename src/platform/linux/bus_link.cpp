#include "platform/linux/bus_link.h"

#include "platform/background_work.h"
#include "platform/linux/file_descriptor.h"

#include <QFile>

#include <sys/socket.h>
#include <sys/un.h>

#include <poll.h>

#include <cstring>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::platform {
namespace {

// A machine without a bus stays so, mostly: after the first tries once a minute is enough.
constexpr std::chrono::milliseconds kRetryDelays[] = {1s, 2s, 5s, 15s, 60s};

// A bus that is there answers within milliseconds, but not while a desktop session is starting.
constexpr std::chrono::milliseconds kAnswerLimit = 2s;

/// Where the bus listens (D-Bus, "Well-known message bus instances"); empty
/// when it would have to be started.
QByteArray addressOf(QDBusConnection::BusType bus)
{
    const bool isSystem = bus == QDBusConnection::SystemBus;
    QByteArray told = qgetenv(isSystem ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS");
    if (!told.isEmpty())
        return told;
    if (isSystem)
        return "unix:path=/var/run/dbus/system_bus_socket"_ba;
    const QByteArray ofUser = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    return QFile::exists(QFile::decodeName(ofUser)) ? "unix:path=" + ofUser : QByteArray();
}

struct SocketName {
    sockaddr_un address {.sun_family = AF_UNIX};
    socklen_t length = 0;
};

/// Of one address, `transport:key=value,...`; absent when it is none of a socket on this machine.
std::optional<SocketName> socketName(const QByteArray& address)
{
    if (!address.startsWith("unix:"))
        return {};
    for (const QByteArray& pair : address.mid(5).split(',')) {
        const bool isAbstract = pair.startsWith("abstract=");
        if (!isAbstract && !pair.startsWith("path="))
            continue;
        QByteArray name = QByteArray::fromPercentEncoding(pair.mid(pair.indexOf('=') + 1));
        if (isAbstract)
            name.prepend('\0'); // unix(7)
        SocketName found;
        if (size_t(name.size()) >= sizeof found.address.sun_path)
            return {};
        std::memcpy(found.address.sun_path, name.constData(), size_t(name.size()));
        found.length = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()));
        return found;
    }
    return {};
}

/// Whether a bus at the other end says anything when asked how one may log in.
bool answers(const FileDescriptor& socket)
{
    constexpr char kQuestion[] = "\0AUTH\r\n";
    if (::send(socket.get(), kQuestion, sizeof kQuestion - 1, MSG_NOSIGNAL) < 0)
        return false;
    pollfd wait {.fd = socket.get(), .events = POLLIN};
    char byte = 0;
    return ::poll(&wait, 1, int(kAnswerLimit.count())) == 1
        && ::recv(socket.get(), &byte, sizeof byte, 0) == 1;
}

/// libdbus waits for ever for a bus that takes connections but does not answer, in the one thread
/// that all connections of the process share, and the end of the program waits for that thread. So
/// it is only let near one that answers.
bool isBusAwake(const QByteArray& addresses)
{
    for (const QByteArray& address : addresses.split(';')) {
        const auto name = socketName(address);
        if (!name)
            return true; // only libdbus knows the way
        const FileDescriptor socket(
            ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&name->address), name->length)
            == 0)
            return answers(socket);
    }
    return false;
}

QString nextConnectionName()
{
    static int s_count = 0;
    return u"netvane-%1"_s.arg(++s_count);
}

} // namespace

BusLink::BusLink(QDBusConnection::BusType bus, Clock& clock, QThreadPool& queue)
    : m_bus(bus)
    , m_clock(clock)
    , m_queue(queue)
{
    connectToBus();
}

BusLink::~BusLink()
{
    drop();
}

void BusLink::connectToBus()
{
    using Connection = std::optional<QDBusConnection>;
    const auto connectNow
        = [bus = m_bus, address = addressOf(m_bus), name = nextConnectionName()]() -> Connection {
        if (!isBusAwake(address))
            return {};
        return QDBusConnection::connectToBus(bus, name);
    };
    runInBackground(
        m_queue, this, connectNow, [this](const Connection& connection) { take(connection); });
}

void BusLink::take(const std::optional<QDBusConnection>& connection)
{
    m_connection = connection;
    // In this order, so that a bus cannot go unnoticed in between.
    const bool watched = m_connection
        && m_connection->connect(QString(), u"/org/freedesktop/DBus/Local"_s,
            u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this, SLOT(handleDisconnected()))
        && m_connection->isConnected();
    if (!watched) {
        handleDisconnected();
        return;
    }
    m_attempts = 0;
    setState(State::Connected);
}

void BusLink::handleDisconnected()
{
    drop();
    const auto delay
        = kRetryDelays[std::min<size_t>(size_t(m_attempts++), std::size(kRetryDelays) - 1)];
    m_retry = m_clock.after(delay, [this] { connectToBus(); });
    setState(State::Absent);
}

void BusLink::drop()
{
    if (!m_connection)
        return;
    QDBusConnection::disconnectFromBus(m_connection->name());
    m_connection.reset();
}

void BusLink::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

} // namespace netvane::platform
