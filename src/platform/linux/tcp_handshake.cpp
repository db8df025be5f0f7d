#include "platform/linux/tcp_handshake.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <poll.h>

#include <cerrno>

namespace netvane::platform {
namespace {

bool isAnswered(int descriptor)
{
    pollfd watched {.fd = descriptor, .events = POLLOUT};
    return ::poll(&watched, 1, 0) > 0;
}

} // namespace

void TcpHandshake::askNext(const Clock& clock)
{
    m_socket = {};
    m_answeredAt.reset();
    while (m_next < m_addresses.size()) {
        if (!ask(m_addresses[m_next++]))
            continue;
        // Looked at here because whoever watches the socket from now on may first have to wait for
        // a processor.
        if (isAnswered(m_socket.get()))
            m_answeredAt = clock.monotonicNow();
        return;
    }
}

bool TcpHandshake::ask(const SocketAddress& address)
{
    FileDescriptor socket(::socket(
        address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP));
    // An interrupted connect goes on by itself.
    if (!socket.isOpen()
        || (::connect(
                socket.get(), reinterpret_cast<const sockaddr*>(&address.storage), address.length)
                != 0
            && errno != EINPROGRESS && errno != EINTR)) {
        m_error = errno;
        return false;
    }
    m_socket = std::move(socket);
    return true;
}

bool TcpHandshake::wasAccepted()
{
    socklen_t length = sizeof m_error;
    if (::getsockopt(m_socket.get(), SOL_SOCKET, SO_ERROR, &m_error, &length) != 0)
        m_error = errno;
    return m_error == 0;
}

void TcpHandshake::fail(int error)
{
    m_socket = {};
    m_error = error;
}

} // namespace netvane::platform
