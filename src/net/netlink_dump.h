#pragma once

#include "netlink/netlink_attributes.h"
#include "netlink/netlink_socket.h"

#include <netlink/msg.h>
#include <netlink/netlink.h>

#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace netvane::net {

using netlink::attributesAfter;
using netlink::headerOf;

/// What the kernel is asked about.
struct Question {
    int type = 0; ///< of the request
    int answer = 0; ///< type of the answers; others are ignored
    /// An attribute of the request, for the one answer that it asks for. Without bytes: all that
    /// the kernel has.
    int attribute = 0;
    std::span<const std::byte> bytes {};
};

/// The records in the answers, those that `parse` leaves out aside. Records before a failure count.
template <typename Header, typename Parse>
auto ask(
    netlink::NetlinkSocket& socket, const Question& question, const Header& header, Parse parse)
{
    std::vector<typename std::invoke_result_t<Parse, netlink::AttributeBytes>::value_type> records;
    const auto& [type, answer, attribute, bytes] = question;
    const netlink::NetlinkMessage message(nlmsg_alloc_simple(type, bytes.empty() ? NLM_F_DUMP : 0));
    if (!message
        || nlmsg_append(message.get(), const_cast<Header*>(&header), sizeof header, NLMSG_ALIGNTO)
            < 0
        || (!bytes.empty()
            && nla_put(message.get(), attribute, int(bytes.size()), bytes.data()) < 0))
        return records;
    const auto take = [&, wanted = answer](const nlmsghdr& received) {
        if (received.nlmsg_type != wanted)
            return;
        auto record = parse({static_cast<const std::byte*>(nlmsg_data(&received)),
            size_t(nlmsg_datalen(&received))});
        if (record)
            records.push_back(std::move(*record));
    };
    (void)socket.request(*message, take, [&records] { records.clear(); });
    return records;
}

} // namespace netvane::net
