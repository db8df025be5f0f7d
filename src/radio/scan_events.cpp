#include "radio/scan_events.h"

#include "netlink/netlink_attributes.h"

#include <linux/nl80211.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

#include <fcntl.h>

#include <algorithm>
#include <array>

namespace netvane::radio {
namespace {

// A message lists the channels (about 100 times 8 bytes) and is alone in its datagram.
constexpr size_t kDatagramSize = size_t(16) * 1024;
constexpr int kDatagramsAtOnce = 64;

std::optional<ScanEvent::Kind> kindOf(int command)
{
    switch (command) {
    case NL80211_CMD_TRIGGER_SCAN:
        return ScanEvent::Kind::Started;
    case NL80211_CMD_NEW_SCAN_RESULTS:
        return ScanEvent::Kind::ResultsReady;
    case NL80211_CMD_SCAN_ABORTED:
        return ScanEvent::Kind::Aborted;
    default:
        return {};
    }
}

/// A list of attributes that hold one frequency each.
std::vector<std::uint32_t> frequenciesIn(netlink::AttributeBytes list)
{
    constexpr size_t kSize = NLA_HDRLEN + sizeof(std::uint32_t);
    std::vector<std::uint32_t> frequencies(list.size() / kSize);
    for (size_t i = 0; i < frequencies.size(); ++i)
        std::memcpy(&frequencies[i], &list[i * kSize + NLA_HDRLEN], sizeof(std::uint32_t));
    return frequencies;
}

std::optional<ScanEvent> eventOf(
    const netlink::GenericMessage& message, std::uint32_t interfaceIndex)
{
    const auto kind = kindOf(message.command);
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(message.attributes);
    if (!kind || attributes.number<std::uint32_t>(NL80211_ATTR_IFINDEX) != interfaceIndex)
        return {};
    ScanEvent event {.kind = *kind};
    if (attributes.has(NL80211_ATTR_SCAN_FREQUENCIES))
        event.frequenciesMhz = frequenciesIn(attributes.nested(NL80211_ATTR_SCAN_FREQUENCIES));
    return event;
}

} // namespace

base::Result<ScanEvents> openScanEvents()
{
    const auto socket = netlink::NetlinkSocket::open(NETLINK_GENERIC);
    if (!socket)
        return socket.failure();
    nl_sock* const handle = socket.value().handle();
    const int family = genl_ctrl_resolve(handle, NL80211_GENL_NAME);
    const int group
        = genl_ctrl_resolve_grp(handle, NL80211_GENL_NAME, NL80211_MULTICAST_GROUP_SCAN);
    if (family < 0 || group < 0)
        return netlink::netlinkFailure(std::min(family, group));
    if (const int status = nl_socket_add_membership(handle, group); status < 0)
        return netlink::netlinkFailure(status);
    base::FileDescriptor descriptor(::fcntl(nl_socket_get_fd(handle), F_DUPFD_CLOEXEC, 0));
    if (!descriptor.isOpen())
        return netlink::netlinkFailure(-NLE_FAILURE);
    return ScanEvents(std::move(descriptor), family);
}

std::vector<ScanEvent> ScanEvents::receive(std::uint32_t interfaceIndex) const
{
    std::vector<ScanEvent> received;
    std::array<std::byte, kDatagramSize> buffer {};
    for (int i = 0; i < kDatagramsAtOnce; ++i) {
        const ssize_t size = ::recv(descriptor(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size <= 0) // nothing left, or events were lost: then the scan ends by its time limit
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
    const auto* message = reinterpret_cast<const nlmsghdr*>(datagram.data());
    for (int left = int(datagram.size()); nlmsg_ok(message, left);
         message = nlmsg_next(const_cast<nlmsghdr*>(message), &left)) {
        const auto generic = netlink::genericMessage(*message, family);
        if (const auto event = generic ? eventOf(*generic, interfaceIndex) : std::nullopt)
            found.push_back(*event);
    }
    return found;
}

} // namespace netvane::radio
