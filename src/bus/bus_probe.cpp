#include "bus/bus_probe.h"

#include "base/file_descriptor.h"

#include <QList>

#include <sys/socket.h>
#include <sys/un.h>

#include <poll.h>

#include <chrono>
#include <cstring>
#include <optional>

using namespace std::chrono_literals;

namespace netvane::bus {
namespace {

// A bus that is there answers within milliseconds, but not while a desktop session is starting.
constexpr std::chrono::milliseconds kAnswerLimit = 2s;

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
bool answers(const base::FileDescriptor& socket)
{
    constexpr char kQuestion[] = "\0AUTH\r\n";
    if (::send(socket.get(), kQuestion, sizeof kQuestion - 1, MSG_NOSIGNAL) < 0)
        return false;
    pollfd wait {.fd = socket.get(), .events = POLLIN};
    char byte = 0;
    return ::poll(&wait, 1, int(kAnswerLimit.count())) == 1
        && ::recv(socket.get(), &byte, sizeof byte, 0) == 1;
}

} // namespace

/// libdbus blocks for ever on a bus that accepts connections but does not answer. It does so on the
/// one thread that all connections of the process share, and the end of the program waits for that
/// thread. So libdbus is only used on a bus that answers.
bool isBusAwake(const QByteArray& addresses)
{
    for (const QByteArray& address : addresses.split(';')) {
        const auto name = socketName(address);
        if (!name)
            return true; // only libdbus knows how
        const base::FileDescriptor socket(
            ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&name->address), name->length)
            == 0)
            return answers(socket);
    }
    return false;
}

} // namespace netvane::bus
