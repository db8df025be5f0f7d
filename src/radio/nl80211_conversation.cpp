#include "radio/nl80211_conversation.h"

#include <linux/nl80211.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/genl/genl.h>
#include <netlink/netlink.h>

namespace netvane::radio {

base::Result<Nl80211Conversation> Nl80211Conversation::open()
{
    auto socket = netlink::NetlinkSocket::open(NETLINK_GENERIC);
    if (!socket)
        return socket.failure();
    const int family = genl_ctrl_resolve(socket.value().handle(), NL80211_GENL_NAME);
    if (family < 0)
        return netlink::netlinkFailure(family);
    return Nl80211Conversation(std::move(socket.value()), family);
}

netlink::NetlinkMessage Nl80211Conversation::newMessage(
    std::uint8_t command, int flags, std::uint32_t index) const
{
    netlink::NetlinkMessage message(nlmsg_alloc());
    if (!message
        || !genlmsg_put(message.get(), NL_AUTO_PORT, NL_AUTO_SEQ, m_family, 0, flags, command, 0)
        || (index != 0 && nla_put_u32(message.get(), NL80211_ATTR_IFINDEX, index) < 0))
        return nullptr;
    return message;
}

base::Result<std::monostate> Nl80211Conversation::requestDump(std::uint8_t command,
    std::uint32_t index, const std::function<void(netlink::AttributeBytes)>& take,
    const std::function<void()>& restart)
{
    const auto message = newMessage(command, NLM_F_DUMP, index);
    if (!message)
        return netlink::netlinkFailure(-NLE_NOMEM);
    const auto takeOurs = [&](const nlmsghdr& answer) {
        // Other programs' configuration can end up in this socket's queue; it is not ours.
        if (answer.nlmsg_type != m_family || !genlmsg_valid_hdr(const_cast<nlmsghdr*>(&answer), 0))
            return;
        auto* header = static_cast<genlmsghdr*>(nlmsg_data(&answer));
        take({reinterpret_cast<const std::byte*>(genlmsg_attrdata(header, 0)),
            size_t(genlmsg_attrlen(header, 0))});
    };
    return m_socket.request(*message, takeOurs, restart);
}

base::Result<std::monostate> Nl80211Conversation::triggerScan(std::uint32_t index)
{
    const auto message = newMessage(NL80211_CMD_TRIGGER_SCAN, 0, index);
    nlattr* const names
        = message ? nla_nest_start(message.get(), NL80211_ATTR_SCAN_SSIDS) : nullptr;
    // One name without a letter asks every network to answer; without any the driver only listens.
    if (!names || nla_put(message.get(), 1, 0, nullptr) < 0)
        return netlink::netlinkFailure(-NLE_NOMEM);
    nla_nest_end(message.get(), names);
    return m_socket.request(
        *message, [](const nlmsghdr&) {}, [] {});
}

} // namespace netvane::radio
