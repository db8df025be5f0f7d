#include "net/route_watch.h"

#include <QSocketNotifier>

#include <arpa/inet.h>
#include <linux/filter.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>
#include <cstddef>

namespace netvane::net {
namespace {

using namespace std::chrono_literals;

/// A lease that is renewed, or a tunnel that is built, changes several routes one after the other.
constexpr std::chrono::milliseconds kSettlingTime = 500ms;
constexpr int kMessagesAtOnce = 256; // what is left makes the socket readable once more

/// Lets through what the watch is about (linux/filter.h). A filter reads numbers in network order;
/// those of netlink are in the machine's, so each constant is converted.
bool filterMessages(int socket)
{
    constexpr auto type = offsetof(nlmsghdr, nlmsg_type);
    constexpr auto destinationBits = NLMSG_HDRLEN + offsetof(rtmsg, rtm_dst_len);
    constexpr auto changedFlags = NLMSG_HDRLEN + offsetof(ifinfomsg, ifi_change);
    // The last two numbers of a jump: how many instructions to skip if so, and if not.
    const auto jumpIfType = [](std::uint16_t message, std::uint8_t yes, std::uint8_t no) {
        return sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, htons(message), yes, no);
    };
    std::array<sock_filter, 13> instructions {{
        BPF_STMT(BPF_LD | BPF_H | BPF_ABS, type),
        jumpIfType(RTM_NEWROUTE, 5, 0),
        jumpIfType(RTM_DELROUTE, 4, 0),
        jumpIfType(RTM_NEWLINK, 5, 0),
        jumpIfType(RTM_DELLINK, 6, 0),
        jumpIfType(RTM_NEWADDR, 5, 0),
        jumpIfType(RTM_DELADDR, 4, 5),
        // Of routes, those for every destination.
        BPF_STMT(BPF_LD | BPF_B | BPF_ABS, destinationBits),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 2, 3),
        // Of links, those that were switched on or off.
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, changedFlags),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, htonl(IFF_UP), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, 0xffffffff), // all of the message
        BPF_STMT(BPF_RET | BPF_K, 0),
    }};
    const sock_fprog program {.len = instructions.size(), .filter = instructions.data()};
    return ::setsockopt(socket, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program) == 0;
}

base::FileDescriptor openSocket()
{
    base::FileDescriptor socket(
        ::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE));
    const sockaddr_nl groups {.nl_family = AF_NETLINK,
        .nl_groups = RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE | RTMGRP_LINK | RTMGRP_IPV4_IFADDR
            | RTMGRP_IPV6_IFADDR};
    if (!filterMessages(socket.get())
        || ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&groups), sizeof groups) != 0)
        return {};
    return socket;
}

} // namespace

RouteWatch::RouteWatch(base::Clock& clock)
    : m_clock(clock)
    , m_socket(openSocket())
{
    if (!m_socket.isOpen())
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &RouteWatch::changesBegin);
}

RouteWatch::~RouteWatch() = default;

void RouteWatch::changesBegin()
{
    m_notifier->setEnabled(false);
    m_settling = m_clock.after(kSettlingTime, [this] { changesAreOver(); });
}

/// What the messages say does not matter: whoever is told reads the routes. An error says that some
/// were lost, which is news as well.
void RouteWatch::changesAreOver()
{
    m_settling.reset();
    std::byte nothing {};
    for (int i = 0; i < kMessagesAtOnce; ++i) {
        if (::recv(m_socket.get(), &nothing, sizeof nothing, MSG_DONTWAIT) < 0)
            break;
    }
    m_notifier->setEnabled(true);
    Q_EMIT routesChanged();
}

} // namespace netvane::net
