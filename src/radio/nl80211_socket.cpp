#include "radio/nl80211_socket.h"

#include <linux/nl80211.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/netlink.h>

namespace netvane::radio {

base::Result<Nl80211Socket> Nl80211Socket::open()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_GENERIC);
    if (!socket)
        return socket.failure();
    const int family = genl_ctrl_resolve(socket.value().handle(), NL80211_GENL_NAME);
    if (family < 0)
        return netlink::netlinkFailure(family);
    return Nl80211Socket(std::move(socket.value()), family);
}

netlink::NetlinkMessage Nl80211Socket::newMessage(
    std::uint8_t command, int flags, std::uint32_t index) const
{
    netlink::NetlinkMessage message(nlmsg_alloc());
    if (!message
        || !genlmsg_put(message.get(), NL_AUTO_PORT, NL_AUTO_SEQ, m_family, 0, flags, command, 0)
        || (index != 0 && nla_put_u32(message.get(), NL80211_ATTR_IFINDEX, index) < 0)
        // In one piece the kernel leaves out what is newer, such as the channels of 6 GHz.
        || (command == NL80211_CMD_GET_WIPHY
            && nla_put_flag(message.get(), NL80211_ATTR_SPLIT_WIPHY_DUMP) < 0))
        return nullptr;
    return message;
}

base::Result<std::monostate> Nl80211Socket::requestRecords(int flags, std::uint8_t command,
    std::uint32_t index, const std::function<void(netlink::AttributeBytes)>& take,
    const std::function<void()>& restart)
{
    const auto message = newMessage(command, flags, index);
    if (!message)
        return netlink::netlinkFailure(-NLE_NOMEM);
    const auto takeOurs = [&](const nlmsghdr& answer) {
        // Messages of other families can end up in this socket's queue.
        if (const auto ours = netlink::genericMessage(answer, m_family))
            take(ours->attributes);
    };
    return m_socket.request(*message, takeOurs, restart);
}

base::Result<std::monostate> Nl80211Socket::triggerScan(std::uint32_t index)
{
    const auto message = newMessage(NL80211_CMD_TRIGGER_SCAN, 0, index);
    nlattr* const names
        = message ? nla_nest_start(message.get(), NL80211_ATTR_SCAN_SSIDS) : nullptr;
    // An empty name asks every network to answer. Without a name the driver only listens.
    if (!names || nla_put(message.get(), 1, 0, nullptr) < 0)
        return netlink::netlinkFailure(-NLE_NOMEM);
    nla_nest_end(message.get(), names);
    return m_socket.request(
        *message, [](const nlmsghdr&) {}, [] {});
}

} // namespace netvane::radio
