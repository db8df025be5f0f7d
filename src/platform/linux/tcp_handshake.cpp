#include "platform/linux/tcp_handshake.h"

#include <sys/socket.h>

#include <poll.h>

#include <cerrno>

namespace netvane::platform {

TcpHandshake::TcpHandshake()
    : Attempt(SOCK_STREAM)
{
}

short TcpHandshake::awaited() const
{
    return POLLOUT;
}

bool TcpHandshake::ask(const SocketAddress& address)
{
    const auto* peer = reinterpret_cast<const sockaddr*>(&address.storage);
    // An interrupted connect goes on by itself.
    return ::connect(descriptor(), peer, address.length) == 0 || errno == EINPROGRESS
        || errno == EINTR;
}

Attempt::Answer TcpHandshake::takeAnswer()
{
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(descriptor(), SOL_SOCKET, SO_ERROR, &error, &length) != 0)
        error = errno;
    return error == 0 ? Answer::Good : badAnswer(error);
}

} // namespace netvane::platform
