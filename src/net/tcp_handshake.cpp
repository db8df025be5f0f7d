#include "net/tcp_handshake.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <poll.h>

#include <cerrno>

namespace netvane::net {

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
    // Reset, not refused: the peer had answered and closed since (tcp(7)).
    const bool isUp = error == 0 || error == ECONNRESET || error == EPIPE;
    return isUp ? Answer::Good : badAnswer(error);
}

/// Its first round-trip sample is the handshake's. Of one in which a packet was sent again it would
/// be that of the last try only.
std::optional<std::chrono::steady_clock::time_point> TcpHandshake::kernelAnsweredAt() const
{
    tcp_info info {};
    socklen_t length = sizeof info;
    if (::getsockopt(descriptor(), IPPROTO_TCP, TCP_INFO, &info, &length) != 0
        || info.tcpi_total_retrans != 0 || info.tcpi_rtt == 0)
        return {};
    return askedAt() + std::chrono::microseconds(info.tcpi_rtt);
}

} // namespace netvane::net
