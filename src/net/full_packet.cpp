#include "net/full_packet.h"

#include "base/file_descriptor.h"
#include "net/host_addresses.h"

#include <QObject>
#include <QSocketNotifier>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace netvane::net {
namespace {

using namespace std::chrono_literals;
using platform::ConnectionState;

constexpr auto kConnectLimit = 3s;
constexpr auto kLook = 1s;
constexpr int kMostLooks = 5;
constexpr int kSmallestSegment = 536; // RFC 9293, 3.7.1
constexpr int kLargestSegment = 9000;

QByteArray requestOf(const QString& host, qsizetype size)
{
    const QByteArray head
        = "GET / HTTP/1.1\r\nHost: " + host.toLatin1() + "\r\nConnection: close\r\nX-Padding: ";
    const QByteArray end = "\r\n\r\n";
    return head + QByteArray(std::max<qsizetype>(0, size - head.size() - end.size()), 'x') + end;
}

class FullPacket : public QObject, public platform::Connection {
public:
    FullPacket(base::Clock& clock, QString host, quint16 port, platform::ConnectionHandler handler)
        : m_clock(clock)
        , m_host(std::move(host))
        , m_port(port)
        , m_handler(std::move(handler))
    {
    }

    void start() override
    {
        const auto addresses = addressesOfLiteral(m_host.toStdString(), m_port);
        if (addresses.empty() || !connectTo(addresses.front())) {
            tell(ConnectionState::Cancelled);
            return;
        }
        m_timer = m_clock.after(kConnectLimit, [this] { tell(ConnectionState::Cancelled); });
        m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Write);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, &FullPacket::connected);
    }

    void cancel() override { close(); }

private:
    bool connectTo(const SocketAddress& address)
    {
        m_socket = base::FileDescriptor(
            ::socket(address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        const auto* peer = reinterpret_cast<const sockaddr*>(&address.storage);
        return m_socket.isOpen()
            && (::connect(m_socket.get(), peer, address.length) == 0 || errno == EINPROGRESS);
    }

    void connected()
    {
        m_notifier->setEnabled(false);
        int segment = 0;
        socklen_t length = sizeof segment;
        const auto info = state();
        if (!info || info->tcpi_state != TCP_ESTABLISHED
            || ::getsockopt(m_socket.get(), IPPROTO_TCP, TCP_MAXSEG, &segment, &length) != 0) {
            tell(ConnectionState::Cancelled);
            return;
        }
        const auto request
            = requestOf(m_host, std::clamp(segment, kSmallestSegment, kLargestSegment));
        const auto sent
            = ::send(m_socket.get(), request.constData(), size_t(request.size()), MSG_NOSIGNAL);
        if (sent != request.size()) {
            tell(ConnectionState::Cancelled);
            return;
        }
        m_timer = m_clock.repeat(kLook, [this] { look(); });
    }

    void look()
    {
        const auto info = state();
        // A peer that reset the connection instead had the packet, too.
        if (!info || info->tcpi_unacked == 0)
            tell(info ? ConnectionState::Ready : ConnectionState::Cancelled);
        else if (++m_looks == kMostLooks)
            tell(ConnectionState::Failed);
    }

    std::optional<tcp_info> state() const
    {
        tcp_info info {};
        socklen_t length = sizeof info;
        return ::getsockopt(m_socket.get(), IPPROTO_TCP, TCP_INFO, &info, &length) == 0
            ? std::optional(info)
            : std::nullopt;
    }

    void close()
    {
        m_handler = nullptr;
        m_timer.reset();
        m_notifier.reset();
        m_socket = {};
    }

    /// On the next turn, once.
    void tell(ConnectionState result)
    {
        m_timer.reset();
        if (m_notifier)
            m_notifier->setEnabled(false);
        const auto now =
            [this,
                event = platform::ConnectionEvent {.state = result, .at = m_clock.monotonicNow()}] {
                m_socket = {};
                if (const auto handler = std::exchange(m_handler, nullptr))
                    handler(event);
            };
        QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
    }

    base::Clock& m_clock;
    const QString m_host;
    const quint16 m_port;
    platform::ConnectionHandler m_handler;
    base::FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<base::Timer> m_timer;
    int m_looks = 0;
};

} // namespace

std::unique_ptr<platform::Connection> fullPacket(
    base::Clock& clock, const QString& host, quint16 port, platform::ConnectionHandler handler)
{
    return std::make_unique<FullPacket>(clock, host, port, std::move(handler));
}

} // namespace netvane::net
