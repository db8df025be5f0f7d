#include "net/socket_connections.h"

#include "net/error_queue.h"
#include "net/full_packet.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <poll.h>

#include <cerrno>
#include <utility>

namespace netvane::net {
namespace {

using namespace std::chrono_literals;

constexpr int kSilentFrom = 3; // attempts in a row
constexpr auto kSilence = 2s; // an attempt that is given up earlier says nothing
constexpr quint16 kUnusedPort = 33434; // the first of those that traces go to: nobody listens
constexpr size_t kMostHosts = 16; // with a record; those of networks long gone are forgotten

/// Sets up a TCP connection.
class TcpProbe : public SocketProbe {
public:
    TcpProbe(ProbeContext& context, FailedAttemptsByHost& failedAttempts, const QString& host,
        quint16 port, platform::ConnectionHandler handler)
        : SocketProbe(context,
            {.socketType = SOCK_STREAM,
                .event = QSocketNotifier::Write,
                .firstLook = base::Delivery::Batched},
            host, port, std::move(handler))
        , m_host(host)
        , m_failedAttempts(failedAttempts)
    {
    }
    ~TcpProbe() override;

private:
    bool ask(const SocketAddress& address) override;
    std::optional<Answer> takeAnswer() override;
    int takeError() const;
    bool isPeersOwn(int error) const;
    FailedAttempts& failedAttempts();
    Answer timedAnswer() const;

    const QString m_host;
    FailedAttemptsByHost& m_failedAttempts;
    SocketAddress m_peer;
    bool m_isRefusedAtOnce = false;
    bool m_isWaiting = false;
};

TcpProbe::~TcpProbe()
{
    if (m_isWaiting && clock().monotonicNow() - askedAt() >= kSilence)
        ++failedAttempts().unanswered;
}

FailedAttempts& TcpProbe::failedAttempts()
{
    if (m_failedAttempts.size() >= kMostHosts && !m_failedAttempts.contains(m_host))
        m_failedAttempts.clear();
    return m_failedAttempts[m_host];
}

bool TcpProbe::ask(const SocketAddress& address)
{
    m_peer = address;
    const auto* peer = reinterpret_cast<const sockaddr*>(&address.storage);
    const int error = ::connect(descriptor(), peer, address.length) == 0 ? 0 : errno;
    m_isRefusedAtOnce = error == ECONNREFUSED; // as by this machine itself
    // An interrupted connect continues in the kernel.
    m_isWaiting = error == 0 || error == EINPROGRESS || error == EINTR || m_isRefusedAtOnce;
    return m_isWaiting;
}

std::optional<SocketProbe::Answer> TcpProbe::takeAnswer()
{
    pollfd watched {.fd = descriptor(), .events = POLLOUT};
    if (::poll(&watched, 1, 0) <= 0)
        return {};
    m_isWaiting = false;
    const int error = takeError();
    // Reset, not refused: the peer had answered and closed since (tcp(7)).
    if (error == 0 || error == ECONNRESET || error == EPIPE) {
        m_failedAttempts.erase(m_host);
        return timedAnswer();
    }
    if (!isPeersOwn(error))
        return Answer {.error = error};
    failedAttempts().isRefused = true;
    failedAttempts().unanswered = 0;
    return Answer {.isUntimed = true};
}

int TcpProbe::takeError() const
{
    if (m_isRefusedAtOnce) // the socket says so only once
        return ECONNREFUSED;
    int error = 0;
    socklen_t length = sizeof error;
    return ::getsockopt(descriptor(), SOL_SOCKET, SO_ERROR, &error, &length) == 0 ? error : errno;
}

/// Whether the host itself sent what ended the attempt: a reset, of which the kernel keeps no
/// record, or an ICMP error, whose sender it names.
bool TcpProbe::isPeersOwn(int error) const
{
    const auto queued = takeQueuedError(descriptor());
    if (!queued || !queued->offender)
        return error == ECONNREFUSED;
    return isSameHost(*queued->offender, m_peer);
}

/// The kernel's first round-trip sample is the handshake's. If a packet was sent twice, the sample
/// would be that of the last try only.
SocketProbe::Answer TcpProbe::timedAnswer() const
{
    tcp_info info {};
    socklen_t length = sizeof info;
    if (::getsockopt(descriptor(), IPPROTO_TCP, TCP_INFO, &info, &length) != 0)
        return {};
    Answer answer {.retransmissions = int(info.tcpi_total_retrans)};
    if (info.tcpi_total_retrans == 0 && info.tcpi_rtt != 0)
        answer.at = askedAt() + std::chrono::microseconds(info.tcpi_rtt);
    return answer;
}

/// Two ways of asking one host, begun and ended together.
class TwoConnections : public platform::Connection {
public:
    TwoConnections(
        std::unique_ptr<platform::Connection> first, std::unique_ptr<platform::Connection> second)
        : m_first(std::move(first))
        , m_second(std::move(second))
    {
    }

    void start() override
    {
        m_first->start();
        m_second->start();
    }
    void cancel() override
    {
        m_first->cancel();
        m_second->cancel();
    }

private:
    const std::unique_ptr<platform::Connection> m_first;
    const std::unique_ptr<platform::Connection> m_second;
};

} // namespace

std::unique_ptr<platform::Connection> SocketConnections::connectTcp(
    const QString& host, quint16 port, platform::ConnectionHandler handler)
{
    using State = platform::ConnectionState;
    const auto byTcp = [&](platform::ConnectionHandler take) {
        return handleOf(new TcpProbe(m_context, m_failedAttempts, host, port, std::move(take)));
    };
    const auto failed = m_failedAttempts.find(host);
    if (failed == m_failedAttempts.end()
        || (!failed->second.isRefused && failed->second.unanswered < kSilentFrom))
        return byTcp(std::move(handler));
    const auto take = [handler = std::move(handler), isOver = std::make_shared<bool>(false)](
                          const platform::ConnectionEvent& event) {
        if (event.state == State::Cancelled || !std::exchange(*isOver, true))
            handler(event);
    };
    // What another router says about the datagram is no answer of the host.
    auto& path = failed->second.datagrams;
    if (!path)
        path = m_datagrams.pathToNeighbour(host);
    auto datagram
        = path->probe(kUnusedPort, 1, [take, host](const platform::ConnectionEvent& event) {
              if (event.state == State::Ready && event.answeredBy == host)
                  take(event);
          });
    return std::make_unique<TwoConnections>(std::move(datagram), byTcp(take));
}

std::unique_ptr<platform::Connection> SocketConnections::sendFullPacket(
    const QString& host, quint16 port, platform::ConnectionHandler handler)
{
    return fullPacket(m_context.clock, host, port, std::move(handler));
}

} // namespace netvane::net
