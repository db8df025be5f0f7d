#include "net/socket_connections.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <poll.h>

#include <cerrno>

namespace netvane::net {
namespace {

/// Sets up a TCP connection.
class TcpProbe : public SocketProbe {
public:
    TcpProbe(ProbeContext& context, QString host, quint16 port, platform::ConnectionHandler handler)
        : SocketProbe(context,
            {.socketType = SOCK_STREAM,
                .event = QSocketNotifier::Write,
                .firstLook = base::Delivery::Batched},
            std::move(host), port, std::move(handler))
    {
    }

private:
    bool ask(const SocketAddress& address) override;
    std::optional<Answer> takeAnswer() override;
    std::optional<std::chrono::steady_clock::time_point> kernelTime() const;
};

bool TcpProbe::ask(const SocketAddress& address)
{
    const auto* peer = reinterpret_cast<const sockaddr*>(&address.storage);
    // An interrupted connect continues in the kernel.
    return ::connect(descriptor(), peer, address.length) == 0 || errno == EINPROGRESS
        || errno == EINTR;
}

std::optional<SocketProbe::Answer> TcpProbe::takeAnswer()
{
    pollfd watched {.fd = descriptor(), .events = POLLOUT};
    if (::poll(&watched, 1, 0) <= 0)
        return {};
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(descriptor(), SOL_SOCKET, SO_ERROR, &error, &length) != 0)
        error = errno;
    // Reset, not refused: the peer answered and has closed since (tcp(7)).
    if (error == 0 || error == ECONNRESET || error == EPIPE)
        return Answer {.at = kernelTime()};
    return Answer {.error = error};
}

/// Its first round-trip sample is the handshake's. If a packet was sent twice, the sample would be
/// that of the last try only.
std::optional<std::chrono::steady_clock::time_point> TcpProbe::kernelTime() const
{
    tcp_info info {};
    socklen_t length = sizeof info;
    if (::getsockopt(descriptor(), IPPROTO_TCP, TCP_INFO, &info, &length) != 0
        || info.tcpi_total_retrans != 0 || info.tcpi_rtt == 0)
        return {};
    return askedAt() + std::chrono::microseconds(info.tcpi_rtt);
}

} // namespace

std::unique_ptr<platform::Connection> SocketConnections::connectTcp(
    const QString& host, quint16 port, platform::ConnectionHandler handler)
{
    return handleOf(new TcpProbe(m_context, host, port, std::move(handler)));
}

} // namespace netvane::net
