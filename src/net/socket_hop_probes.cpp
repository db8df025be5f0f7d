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

constexpr int kMostIgnored = 8; // a router sends one at most for a datagram

bool set(int socket, int level, int option, int value)
{
    return ::setsockopt(socket, level, option, &value, sizeof value) == 0;
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

enum class Use {
    Trace, ///< routers share load by the ports, so all probes of a path have one
    Watch, ///< again and again for as long as the program runs
    Neighbour, ///< likewise; no router may pass a datagram on, whatever the routes say
};

/// The state that the probes of a path share; the last of them may outlive it.
struct Path {
    const QString host;
    const AddressLookup lookUp;
    const Use use = Use::Trace;
    const QByteArray interfaceName {}; ///< empty: as the routes say
    bool isTimed = false; ///< since an earlier probe
    in_port_t ownPort = 0; ///< of a trace, in the order of the network; 0 before the first probe
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
    bool setUp(sa_family_t family);
    void takeOwnPort(sa_family_t family);
    std::optional<Answer> takeAnswer() override;
    std::optional<Answer> takeDatagram();
    std::optional<Answer> badAnswer(int error);
    Answer goodAnswer() const;

    const std::shared_ptr<Path> m_path;
    const int m_hopLimit;
    SocketAddress m_peer;
    int m_ignored = 0; ///< bad answers
};

bool UdpHopProbe::setUp(sa_family_t family)
{
    const int socket = descriptor();
    const QByteArray& device = m_path->interfaceName;
    (void)kernelStamp(socket);
    // Without a flow label, by which routers may share load, too: the kernel makes one a socket.
    const bool isSet = family == AF_INET
        ? set(socket, IPPROTO_IP, IP_RECVERR, 1) && set(socket, IPPROTO_IP, IP_TTL, m_hopLimit)
        : set(socket, IPPROTO_IPV6, IPV6_RECVERR, 1)
            && set(socket, IPPROTO_IPV6, IPV6_AUTOFLOWLABEL, 0)
            && set(socket, IPPROTO_IPV6, IPV6_UNICAST_HOPS, m_hopLimit);
    return isSet && set(socket, SOL_SOCKET, SO_DONTROUTE, m_path->use == Use::Neighbour)
        && (device.isEmpty()
            || ::setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, device.constData(),
                   socklen_t(device.size()))
                == 0);
}

bool UdpHopProbe::ask(const SocketAddress& address)
{
    const int socket = descriptor();
    if (!setUp(address.storage.ss_family))
        return false;
    // A stranger who wants to forge an answer has to guess the port. A watched path would give him
    // hours for it, so that there each probe has another one, by chance.
    if (m_path->use == Use::Trace)
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
        return badAnswer(int(error->report.ee_errno));
    case HopAnswer::Good:
        break;
    }
    Answer answer = goodAnswer();
    if (!isSameHost(*error->offender, m_peer))
        answer.from = QString::fromStdString(addressText(*error->offender));
    return answer;
}

/// On a watched path it counts no more than silence does, so that nobody can take the place of a
/// good answer with it. Some are waited out: a flood of them must not keep the main thread busy.
std::optional<SocketProbe::Answer> UdpHopProbe::badAnswer(int error)
{
    if (m_path->use == Use::Watch && ++m_ignored < kMostIgnored)
        return {};
    // Another address of the same name has another way, whose hops are none of this one's.
    return Answer {.error = error, .endsProbe = true};
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
    SocketHopPath(
        ProbeContext& context, const QString& host, Use use, const QString& interfaceName = {})
        : m_context(context)
        , m_path(new Path {.host = host,
              .lookUp = askingOnce(context.lookUp),
              .use = use,
              .interfaceName = interfaceName.toLocal8Bit()})
    {
        (void)kernelStamp(m_path->timed.get());
    }

    std::unique_ptr<platform::Connection> probe(
        quint16 port, int hopLimit, platform::ConnectionHandler handler) override
    {
        // Before the kernel takes times, that of an answer is when it is seen.
        const bool mayWait = std::exchange(m_path->isTimed, true) && m_path->use != Use::Trace;
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
    return std::make_unique<SocketHopPath>(m_context, host, Use::Trace);
}

std::unique_ptr<platform::HopPath> SocketHopProbes::watchedPathTo(
    const QString& host, const QString& interfaceName)
{
    return std::make_unique<SocketHopPath>(m_context, host, Use::Watch, interfaceName);
}

std::unique_ptr<platform::HopPath> SocketHopProbes::pathToNeighbour(const QString& host)
{
    return std::make_unique<SocketHopPath>(m_context, host, Use::Neighbour);
}

} // namespace netvane::net
