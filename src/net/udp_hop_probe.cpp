#include "net/udp_hop_probe.h"

#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>

#include <poll.h>

#include <cerrno>

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

} // namespace

Attempt::Answer meaningOf(const QueuedError& error, const SocketAddress& peer)
{
    const auto& [origin, expiredType, expiredCode, unreachableType, portCode]
        = peer.storage.ss_family == AF_INET ? kIPv4 : kIPv6;
    const auto& report = error.report;
    if (report.ee_origin != origin || !error.offender || !isSamePeer(error.sentTo, peer))
        return Attempt::Answer::None;
    const bool hasExpired = report.ee_type == expiredType && report.ee_code == expiredCode;
    const bool isClosed = report.ee_type == unreachableType && report.ee_code == portCode;
    return hasExpired || (isClosed && isSameHost(*error.offender, peer)) ? Attempt::Answer::Good
                                                                         : Attempt::Answer::Bad;
}

UdpHopProbe::UdpHopProbe(int hopLimit)
    : Attempt(SOCK_DGRAM)
    , m_hopLimit(hopLimit)
{
}

short UdpHopProbe::awaited() const
{
    return POLLIN;
}

bool UdpHopProbe::ask(const SocketAddress& address)
{
    const int socket = descriptor();
    const bool isSet = address.storage.ss_family == AF_INET
        ? set(socket, IPPROTO_IP, IP_RECVERR, 1) && set(socket, IPPROTO_IP, IP_TTL, m_hopLimit)
        : set(socket, IPPROTO_IPV6, IPV6_RECVERR, 1)
            && set(socket, IPPROTO_IPV6, IPV6_UNICAST_HOPS, m_hopLimit);
    if (!isSet
        || ::connect(socket, reinterpret_cast<const sockaddr*>(&address.storage), address.length)
            != 0)
        return false;
    // As the kernel knows it from now on: connected to 0.0.0.0, it sends to 127.0.0.1.
    m_peer.length = sizeof m_peer.storage;
    return ::getpeername(socket, reinterpret_cast<sockaddr*>(&m_peer.storage), &m_peer.length) == 0
        && ::send(socket, nullptr, 0, 0) == 0;
}

/// One message at a time: who sends many must not keep the network thread here.
Attempt::Answer UdpHopProbe::takeAnswer()
{
    const auto error = takeQueuedError(descriptor());
    if (!error)
        return takeDatagram();
    const auto meaning = meaningOf(*error, m_peer);
    if (meaning == Answer::Good && !isSameHost(*error->offender, m_peer))
        m_router = addressText(*error->offender);
    if (meaning != Answer::Bad)
        return meaning;
    // Another address of the same name has another way, whose hops are none of this one's.
    setAddresses({});
    return badAnswer(int(error->report.ee_errno));
}

Attempt::Answer UdpHopProbe::takeDatagram()
{
    SocketAddress sender {.length = sizeof sender.storage};
    if (::recvfrom(descriptor(), nullptr, 0, MSG_DONTWAIT,
            reinterpret_cast<sockaddr*>(&sender.storage), &sender.length)
        < 0)
        return Answer::None;
    // It may have come while the socket had a port but no peer yet.
    return isSamePeer(sender, m_peer) ? Answer::Good : Answer::None;
}

} // namespace netvane::net
