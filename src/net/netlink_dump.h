#pragma once

#include "netlink/netlink_attributes.h"
#include "netlink/netlink_socket.h"

#include <netlink/msg.h>
#include <netlink/netlink.h>

#include <algorithm>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace netvane::net {

/// The fixed header of a message; absent if the message is shorter.
template <typename Header>
std::optional<Header> headerOf(netlink::AttributeBytes message)
{
    if (message.size() < sizeof(Header))
        return {};
    Header header {};
    std::memcpy(&header, message.data(), sizeof header);
    return header;
}

template <typename Header>
netlink::AttributeBytes attributesAfter(netlink::AttributeBytes message)
{
    return message.subspan(std::min(message.size(), size_t(NLMSG_ALIGN(sizeof(Header)))));
}

/// An attribute of a request.
struct RequestAttribute {
    int type = 0;
    std::span<const std::byte> bytes {};
};

/// The records in the answers of the type `answer`, those that `parse` leaves out aside. Records
/// before a failure count.
template <typename Header, typename Parse>
auto request(netlink::NetlinkSocket& socket, int flags, int type, int answer, const Header& header,
    const RequestAttribute& attribute, Parse parse)
{
    std::vector<typename std::invoke_result_t<Parse, netlink::AttributeBytes>::value_type> records;
    const netlink::NetlinkMessage message(nlmsg_alloc_simple(type, flags));
    if (!message
        || nlmsg_append(message.get(), const_cast<Header*>(&header), sizeof header, NLMSG_ALIGNTO)
            < 0
        || (!attribute.bytes.empty()
            && nla_put(message.get(), attribute.type, int(attribute.bytes.size()),
                   attribute.bytes.data())
                < 0))
        return records;
    const auto take = [&](const nlmsghdr& received) {
        if (received.nlmsg_type != answer)
            return;
        auto record = parse({static_cast<const std::byte*>(nlmsg_data(&received)),
            size_t(nlmsg_datalen(&received))});
        if (record)
            records.push_back(std::move(*record));
    };
    (void)socket.request(*message, take, [&records] { records.clear(); });
    return records;
}

/// All that the kernel has.
template <typename Header, typename Parse>
auto dump(netlink::NetlinkSocket& socket, int type, int answer, const Header& header, Parse parse)
{
    return request(socket, NLM_F_DUMP, type, answer, header, {}, parse);
}

/// The one that the attribute asks for.
template <typename Header, typename Parse>
auto ask(netlink::NetlinkSocket& socket, int type, int answer, const Header& header,
    const RequestAttribute& attribute, Parse parse)
{
    return request(socket, 0, type, answer, header, attribute, parse);
}

} // namespace netvane::net
