#include "net/socket_hop_probes.h"

#include <linux/sockios.h>
#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <sys/ioctl.h>

namespace netvane::net {
namespace {

using namespace std::chrono_literals;

constexpr auto kTimedAfterProbe = 5s; // longer than a probe and the pause after it
constexpr quint16 kNeighbourPort = 33434; // the first of those that traces go to: nobody listens

/// The numbers of one family's ICMP (RFC 792, RFC 4443).
struct IcmpNumbers {
    int origin;
    int expiredType;
    int expiredCode;
    int unreachableType;
    int portCode;
};

constexpr IcmpNumbers kIPv4
    = {SO_EE_ORIGIN_ICMP, ICMP_TIME_EXCEEDED, ICMP_EXC_TTL, ICMP_DEST_UNREACH, ICMP_PORT_UNREACH};
constexpr IcmpNumbers kIPv6 = {SO_EE_ORIGIN_ICMP6, ICMP6_TIME_EXCEEDED, ICMP6_TIME_EXCEED_TRANSIT,
    ICMP6_DST_UNREACH, ICMP6_DST_UNREACH_NOPORT};

bool set(int socket, int level, int option, int value)
{
    return ::setsockopt(socket, level, option, &value, sizeof value) == 0;
}

/// The arrival time of the last message that was read from the socket, by the wall clock. The first
/// call makes the kernel record these times, and fails.
std::optional<std::chrono::system_clock::time_point> kernelStamp(int socket)
{
    timespec stamp {};
    if (::ioctl(socket, SIOCGSTAMPNS, &stamp) != 0)
        return {};
    return std::chrono::system_clock::time_point(
        std::chrono::seconds(stamp.tv_sec) + std::chrono::nanoseconds(stamp.tv_nsec));
}

/// How far a datagram may go.
struct Reach {
    int hopLimit = 1;
    bool isNeighbour = false; ///< no router may pass it on, whatever the routes say
};

/// Sends an empty datagram with a hop limit and receives the answer of a router on the path or of
/// the peer.
class UdpHopProbe : public SocketProbe {
public:
    UdpHopProbe(ProbeContext& context, QString host, quint16 port, Reach reach,
        base::Delivery firstLook, platform::ConnectionHandler handler)
        : SocketProbe(context,
            {.socketType = SOCK_DGRAM, .event = QSocketNotifier::Read, .firstLook = firstLook},
            std::move(host), port, std::move(handler))
        , m_reach(reach)
    {
    }

private:
    bool ask(const SocketAddress& address) override;
    std::optional<Answer> takeAnswer() override;
    std::optional<Answer> takeDatagram();
    Answer goodAnswer() const;

    const Reach m_reach;
    SocketAddress m_peer;
};

bool UdpHopProbe::ask(const SocketAddress& address)
{
    const int socket = descriptor();
    const auto [hopLimit, isNeighbour] = m_reach;
    (void)kernelStamp(socket);
    const bool isSet = address.storage.ss_family == AF_INET
        ? set(socket, IPPROTO_IP, IP_RECVERR, 1) && set(socket, IPPROTO_IP, IP_TTL, hopLimit)
        : set(socket, IPPROTO_IPV6, IPV6_RECVERR, 1)
            && set(socket, IPPROTO_IPV6, IPV6_UNICAST_HOPS, hopLimit);
    if (!isSet || !set(socket, SOL_SOCKET, SO_DONTROUTE, isNeighbour)
        || ::connect(socket, reinterpret_cast<const sockaddr*>(&address.storage), address.length)
            != 0)
        return false;
    // As the kernel has it after connecting: a socket connected to 0.0.0.0 sends to 127.0.0.1.
    m_peer.length = sizeof m_peer.storage;
    return ::getpeername(socket, reinterpret_cast<sockaddr*>(&m_peer.storage), &m_peer.length) == 0
        && ::send(socket, nullptr, 0, 0) == 0;
}

/// One message at a time: a host that sends many must not block the main thread.
std::optional<SocketProbe::Answer> UdpHopProbe::takeAnswer()
{
    const auto error = takeQueuedError(descriptor());
    if (!error)
        return takeDatagram();
    switch (meaningOf(*error, m_peer)) {
    case HopAnswer::None:
        return {};
    case HopAnswer::Bad:
        // Another address of the same name has another path, with other hops.
        return Answer {.error = int(error->report.ee_errno), .endsProbe = true};
    case HopAnswer::Good:
        break;
    }
    Answer answer = goodAnswer();
    if (!isSameHost(*error->offender, m_peer))
        answer.from = QString::fromStdString(addressText(*error->offender));
    return answer;
}

std::optional<SocketProbe::Answer> UdpHopProbe::takeDatagram()
{
    SocketAddress sender {.length = sizeof sender.storage};
    // It may have arrived while the socket had a port but no peer yet.
    if (::recvfrom(descriptor(), nullptr, 0, MSG_DONTWAIT,
            reinterpret_cast<sockaddr*>(&sender.storage), &sender.length)
            < 0
        || !isSamePeer(sender, m_peer))
        return {};
    return goodAnswer();
}

SocketProbe::Answer UdpHopProbe::goodAnswer() const
{
    const auto stamp = kernelStamp(descriptor());
    if (!stamp)
        return {};
    return {.at = clock().monotonicNow() - (std::chrono::system_clock::now() - *stamp)};
}

} // namespace

HopAnswer meaningOf(const QueuedError& error, const SocketAddress& peer)
{
    const auto& [origin, expiredType, expiredCode, unreachableType, portCode]
        = peer.storage.ss_family == AF_INET ? kIPv4 : kIPv6;
    const auto& report = error.report;
    if (report.ee_origin != origin || !error.offender || !isSamePeer(error.sentTo, peer))
        return HopAnswer::None;
    const bool hasExpired = report.ee_type == expiredType && report.ee_code == expiredCode;
    const bool isClosed = report.ee_type == unreachableType && report.ee_code == portCode;
    return hasExpired || (isClosed && isSameHost(*error.offender, peer)) ? HopAnswer::Good
                                                                         : HopAnswer::Bad;
}

std::unique_ptr<platform::Connection> SocketHopProbes::probeHop(
    const QString& host, quint16 port, int hopLimit, platform::ConnectionHandler handler)
{
    (void)takeTimes();
    return handleOf(new UdpHopProbe(m_context, host, port, {.hopLimit = hopLimit},
        base::Delivery::Immediate, std::move(handler)));
}

std::unique_ptr<platform::Connection> SocketHopProbes::probeNeighbour(
    const QString& host, platform::ConnectionHandler handler)
{
    // As long as the kernel takes no times, that of an answer is when it is seen.
    const auto firstLook = takeTimes() ? base::Delivery::Batched : base::Delivery::Immediate;
    return handleOf(new UdpHopProbe(
        m_context, host, kNeighbourPort, {.isNeighbour = true}, firstLook, std::move(handler)));
}

/// Whether the kernel has been doing so since an earlier probe.
bool SocketHopProbes::takeTimes()
{
    m_untimed = m_context.clock.after(kTimedAfterProbe, [this] { m_timed = {}; });
    if (m_timed.isOpen())
        return true;
    m_timed = base::FileDescriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    (void)kernelStamp(m_timed.get());
    return false;
}

} // namespace netvane::net
