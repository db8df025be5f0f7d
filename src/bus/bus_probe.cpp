#include "bus/bus_probe.h"

#include "base/file_descriptor.h"

#include <QList>

#include <sys/socket.h>
#include <sys/un.h>

#include <poll.h>

#include <cerrno>
#include <cstring>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace netvane::bus {
namespace {

// A bus that is there answers within milliseconds, but not while a desktop session is starting.
constexpr int kStartLimitMs = 5'000;

constexpr char kSessionBus[] = "DBUS_SESSION_BUS_ADDRESS";
// An address of no kind that libdbus knows: every connection fails at once.
constexpr char kNoBus[] = "disabled:";

struct SocketName {
    sockaddr_un address {.sun_family = AF_UNIX};
    socklen_t length = 0;
};

/// Of one address, `transport:key=value,...`; absent when it is not a socket on this machine.
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

/// Whether the bus at the other end sends anything when asked for its authentication methods.
bool answers(const base::FileDescriptor& socket, int limitMs)
{
    constexpr char kQuestion[] = "\0AUTH\r\n";
    if (::send(socket.get(), kQuestion, sizeof kQuestion - 1, MSG_NOSIGNAL) < 0)
        return false;
    pollfd wait {.fd = socket.get(), .events = POLLIN};
    char byte = 0;
    return ::poll(&wait, 1, limitMs) == 1 && ::recv(socket.get(), &byte, sizeof byte, 0) == 1;
}

/// The place of a session bus that nothing names; empty without a folder for it.
QByteArray usualSessionAddress()
{
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QByteArray() : "unix:path=" + folder + "/bus";
}

} // namespace

QByteArray busAddress(QDBusConnection::BusType bus)
{
    const bool isSystem = bus == QDBusConnection::SystemBus;
    QByteArray named = qgetenv(isSystem ? "DBUS_SYSTEM_BUS_ADDRESS" : kSessionBus);
    if (!named.isEmpty())
        return named;
    return isSystem ? "unix:path=/var/run/dbus/system_bus_socket"_ba : usualSessionAddress();
}

/// libdbus blocks for ever on a bus that accepts connections but does not answer. It does so on the
/// one thread that all connections of the process share, and the end of the program waits for that
/// thread. So libdbus is only used on a bus that answers.
BusState probeBus(const QByteArray& addresses, int limitMs)
{
    if (addresses.isEmpty())
        return BusState::Absent;
    for (const QByteArray& address : addresses.split(';')) {
        const auto name = socketName(address);
        if (!name)
            return BusState::Awake; // only libdbus knows how
        const base::FileDescriptor socket(
            ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&name->address), name->length)
            == 0)
            return answers(socket, limitMs) ? BusState::Awake : BusState::Silent;
        if (errno == EAGAIN) // connections that nobody accepts fill its queue
            return BusState::Silent;
    }
    return BusState::Absent;
}

bool prepareSessionBus()
{
    const QByteArray address = busAddress(QDBusConnection::SessionBus);
    const bool isSilent = probeBus(address, kStartLimitMs) == BusState::Silent;
    qputenv(kSessionBus, isSilent || address.isEmpty() ? QByteArray(kNoBus) : address);
    return !isSilent;
}

} // namespace netvane::bus
