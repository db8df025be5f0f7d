#include "radio/scan_events.h"

#include "netlink/netlink_attributes.h"

#include <linux/nl80211.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/netlink.h>
#include <sys/socket.h>

#include <array>

namespace netvane::radio {
namespace {

// A message lists the channels, some hundred times eight bytes, and comes alone in its datagram.
constexpr size_t kDatagramSize = size_t(16) * 1024;
constexpr int kDatagramsAtOnce = 64;

std::optional<ScanEvent> eventOf(int command)
{
    switch (command) {
    case NL80211_CMD_TRIGGER_SCAN:
        return ScanEvent::Started;
    case NL80211_CMD_NEW_SCAN_RESULTS:
        return ScanEvent::ResultsReady;
    case NL80211_CMD_SCAN_ABORTED:
        return ScanEvent::Aborted;
    default:
        return {};
    }
}

base::FileDescriptor openGroup(int group)
{
    base::FileDescriptor socket(
        ::socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_GENERIC));
    const sockaddr_nl address {.nl_family = AF_NETLINK};
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0
        || ::setsockopt(socket.get(), SOL_NETLINK, NETLINK_ADD_MEMBERSHIP, &group, sizeof group)
            != 0)
        return {};
    return socket;
}

} // namespace

base::Result<ScanEvents> openScanEvents()
{
    auto asking = netlink::NetlinkSocket::open(NETLINK_GENERIC);
    if (!asking)
        return asking.failure();
    const int family = genl_ctrl_resolve(asking.value().handle(), NL80211_GENL_NAME);
    const int group = genl_ctrl_resolve_grp(
        asking.value().handle(), NL80211_GENL_NAME, NL80211_MULTICAST_GROUP_SCAN);
    if (family < 0 || group < 0)
        return netlink::netlinkFailure(std::min(family, group));
    auto socket = openGroup(group);
    if (!socket.isOpen())
        return netlink::netlinkFailure(-NLE_FAILURE);
    return ScanEvents(std::move(socket), family);
}

std::vector<ScanEvent> ScanEvents::receive(std::uint32_t interfaceIndex) const
{
    std::vector<ScanEvent> received;
    std::array<std::byte, kDatagramSize> buffer {};
    for (int i = 0; i < kDatagramsAtOnce; ++i) {
        const ssize_t size = ::recv(descriptor(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size <= 0) // nothing left, or some were lost; then the scan's time limit remains
            break;
        const auto events = scanEvents({buffer.data(), size_t(size)}, m_family, interfaceIndex);
        received.insert(received.end(), events.begin(), events.end());
    }
    return received;
}

std::vector<ScanEvent> scanEvents(
    netlink::AttributeBytes datagram, int family, std::uint32_t interfaceIndex)
{
    std::vector<ScanEvent> found;
    auto* message = reinterpret_cast<nlmsghdr*>(const_cast<std::byte*>(datagram.data()));
    for (int left = int(datagram.size()); nlmsg_ok(message, left);
         message = nlmsg_next(message, &left)) {
        if (message->nlmsg_type != family || !genlmsg_valid_hdr(message, 0))
            continue;
        auto* header = static_cast<genlmsghdr*>(nlmsg_data(message));
        const netlink::Attributes<NL80211_ATTR_MAX> attributes(
            {reinterpret_cast<const std::byte*>(genlmsg_attrdata(header, 0)),
                size_t(genlmsg_attrlen(header, 0))});
        const auto event = eventOf(header->cmd);
        if (event && attributes.number<std::uint32_t>(NL80211_ATTR_IFINDEX) == interfaceIndex)
            found.push_back(*event);
    }
    return found;
}

} // namespace netvane::radio
