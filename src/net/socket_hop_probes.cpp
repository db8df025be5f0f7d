#include "net/socket_hop_probes.h"

#include <linux/sockios.h>
#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <sys/ioctl.h>

#include <mutex>
#include <utility>

namespace netvane::net {
namespace {

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

/// Anybody may do this once a socket (SO_BINDTODEVICE, socket(7)).
bool bindTo(int socket, const QByteArray& interfaceName)
{
    return interfaceName.isEmpty()
        || ::setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, interfaceName.constData(),
               socklen_t(interfaceName.size()))
        == 0;
}

/// When the last message that was taken from the socket had come, by the wall clock. The first call
/// has the kernel take these times from then on, and fails.
std::optional<std::chrono::system_clock::time_point> kernelStamp(int socket)
{
    timespec stamp {};
    if (::ioctl(socket, SIOCGSTAMPNS, &stamp) != 0)
        return {};
    return std::chrono::system_clock::time_point(
        std::chrono::seconds(stamp.tv_sec) + std::chrono::nanoseconds(stamp.tv_nsec));
}

/// Asks once: whoever comes later, or meanwhile, gets the same answer. Some threads may still wait
/// for it when the program ends.
AddressLookup askingOnce(const AddressLookup& lookUp)
{
    struct Answer {
        std::once_flag asked;
        HostAddresses found;
    };
    return
        [lookUp, answer = std::make_shared<Answer>()](const std::string& host, std::uint16_t port) {
            std::call_once(answer->asked, [&] { answer->found = lookUp(host, port); });
            HostAddresses found = answer->found;
            for (auto& address : found.addresses)
                portOf(address) = htons(port);
            return found;
        };
}

/// The state that the probes of a path share; the last of them may outlive it.
struct Path {
    const QString host;
    const AddressLookup lookUp;
    const bool isToNeighbour = false; ///< no router may pass a datagram on, whatever the routes say
    const bool mayBeLate = false; ///< an answer may be looked for after a moment, once it is timed
    const QByteArray interfaceName {}; ///< that datagrams leave by, if not empty
    bool isTimed = false; ///< since an earlier probe
    in_port_t ownPort = 0; ///< in the order of the network; 0 before the first probe
    /// The kernel times packets while any socket asks for it, and begins with a delay. This one
    /// spans the pauses between the probes.
    const base::FileDescriptor timed {::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
};

/// An empty datagram with a hop limit, and who answers it: a router on the way, or the peer.
class UdpHopProbe : public SocketProbe {
public:
    UdpHopProbe(ProbeContext& context, std::shared_ptr<Path> path, quint16 port, int hopLimit,
        base::Delivery firstLook, platform::ConnectionHandler handler)
        : SocketProbe(context,
            {.socketType = SOCK_DGRAM, .event = QSocketNotifier::Read, .firstLook = firstLook},
            path->host, port, std::move(handler))
        , m_path(std::move(path))
        , m_hopLimit(hopLimit)
    {
    }

private:
    AddressLookup lookUp() const override { return m_path->lookUp; }
    bool ask(const SocketAddress& address) override;
    void takeOwnPort(sa_family_t family);
    std::optional<Answer> takeAnswer() override;
    std::optional<Answer> takeDatagram();
    Answer goodAnswer() const;

    const std::shared_ptr<Path> m_path;
    const int m_hopLimit;
    SocketAddress m_peer;
};

bool UdpHopProbe::ask(const SocketAddress& address)
{
    const int socket = descriptor();
    (void)kernelStamp(socket);
    // Without a flow label, by which routers may share load, too: the kernel makes one a socket.
    const bool isSet = address.storage.ss_family == AF_INET
        ? set(socket, IPPROTO_IP, IP_RECVERR, 1) && set(socket, IPPROTO_IP, IP_TTL, m_hopLimit)
        : set(socket, IPPROTO_IPV6, IPV6_RECVERR, 1)
            && set(socket, IPPROTO_IPV6, IPV6_AUTOFLOWLABEL, 0)
            && set(socket, IPPROTO_IPV6, IPV6_UNICAST_HOPS, m_hopLimit);
    if (!isSet || !set(socket, SOL_SOCKET, SO_DONTROUTE, m_path->isToNeighbour)
        || !bindTo(socket, m_path->interfaceName))
        return false;
    if (!m_path->isToNeighbour) // there is one way to it; each probe has a port of its own
        takeOwnPort(address.storage.ss_family);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address.storage), address.length) != 0)
        return false;
    // As the kernel knows it from now on: connected to 0.0.0.0, it sends to 127.0.0.1.
    m_peer.length = sizeof m_peer.storage;
    return ::getpeername(socket, reinterpret_cast<sockaddr*>(&m_peer.storage), &m_peer.length) == 0
        && ::send(socket, nullptr, 0, 0) == 0;
}

/// That of the path. If somebody else took it between two probes, the rest has another.
void UdpHopProbe::takeOwnPort(sa_family_t family)
{
    SocketAddress own {.length
        = family == AF_INET ? socklen_t(sizeof(sockaddr_in)) : socklen_t(sizeof(sockaddr_in6))};
    own.storage.ss_family = family;
    auto* name = reinterpret_cast<sockaddr*>(&own.storage);
    for (const in_port_t port : {m_path->ownPort, in_port_t(0)}) {
        portOf(own) = port;
        if (::bind(descriptor(), name, own.length) == 0)
            break;
    }
    if (::getsockname(descriptor(), name, &own.length) == 0)
        m_path->ownPort = portOf(own);
}

/// One message at a time: a host that sends many must not keep the main thread here.
std::optional<SocketProbe::Answer> UdpHopProbe::takeAnswer()
{
    const auto error = takeQueuedError(descriptor());
    if (!error)
        return takeDatagram();
    switch (meaningOf(*error, m_peer)) {
    case HopAnswer::None:
        return {};
    case HopAnswer::Bad:
        // Another address of the same name has another way, whose hops are none of this one's.
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
    // It may have come while the socket had a port but no peer yet.
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

class SocketHopPath : public platform::HopPath {
public:
    SocketHopPath(ProbeContext& context, Path* path)
        : m_context(context)
        , m_path(path)
    {
        (void)kernelStamp(m_path->timed.get());
    }

    std::unique_ptr<platform::Connection> probe(
        quint16 port, int hopLimit, platform::ConnectionHandler handler) override
    {
        // Before the kernel takes times, that of an answer is when it is seen.
        const bool mayWait = std::exchange(m_path->isTimed, true) && m_path->mayBeLate;
        return handleOf(new UdpHopProbe(m_context, m_path, port, hopLimit,
            mayWait ? base::Delivery::Batched : base::Delivery::Immediate, std::move(handler)));
    }

private:
    ProbeContext& m_context;
    const std::shared_ptr<Path> m_path;
};

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

std::unique_ptr<platform::HopPath> SocketHopProbes::pathTo(const QString& host)
{
    return std::make_unique<SocketHopPath>(
        m_context, new Path {.host = host, .lookUp = askingOnce(m_context.lookUp)});
}

std::unique_ptr<platform::HopPath> SocketHopProbes::watchedPathTo(
    const QString& host, const QString& interfaceName)
{
    return std::make_unique<SocketHopPath>(m_context,
        new Path {.host = host,
            .lookUp = askingOnce(m_context.lookUp),
            .mayBeLate = true,
            .interfaceName = interfaceName.toUtf8()});
}

std::unique_ptr<platform::HopPath> SocketHopProbes::pathToNeighbour(const QString& host)
{
    return std::make_unique<SocketHopPath>(m_context,
        new Path {.host = host,
            .lookUp = askingOnce(m_context.lookUp),
            .isToNeighbour = true,
            .mayBeLate = true});
}

} // namespace netvane::net
