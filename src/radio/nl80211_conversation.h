#pragma once

#include "netlink/netlink_socket.h"

#include <cstdint>
#include <vector>

namespace netvane::radio {

/// One conversation with nl80211 over generic netlink (linux/nl80211.h). May wait for a driver,
/// within the bounds of `NetlinkSocket`: for background threads, one at a time.
class Nl80211Conversation {
public:
    /// NotAvailable or NotFound where the kernel has no nl80211 at all.
    static base::Result<Nl80211Conversation> open();

    /// Everything that `command` lists, about one interface or (index 0) about all. What came
    /// before a failure counts: half an answer is better than none.
    template <typename Parse>
    auto dump(std::uint8_t command, std::uint32_t index, Parse parse)
    {
        std::vector<decltype(parse(netlink::AttributeBytes {}))> records;
        (void)dumpInto(records, command, index, parse);
        return records;
    }

    /// The same where nothing must not be taken for an empty list.
    template <typename Record, typename Parse>
    base::Result<std::monostate> dumpInto(
        std::vector<Record>& records, std::uint8_t command, std::uint32_t index, Parse parse)
    {
        return requestDump(
            command, index,
            [&](netlink::AttributeBytes attributes) { records.push_back(parse(attributes)); },
            [&records] { records.clear(); });
    }

    /// Has the driver look for every network, on all channels (NL80211_CMD_TRIGGER_SCAN, wants
    /// CAP_NET_ADMIN). Returns when it has begun.
    base::Result<std::monostate> triggerScan(std::uint32_t index);

private:
    Nl80211Conversation(netlink::NetlinkSocket socket, int family)
        : m_socket(std::move(socket))
        , m_family(family)
    {
    }

    /// Null when there is no memory.
    netlink::NetlinkMessage newMessage(std::uint8_t command, int flags, std::uint32_t index) const;
    base::Result<std::monostate> requestDump(std::uint8_t command, std::uint32_t index,
        const std::function<void(netlink::AttributeBytes)>& take,
        const std::function<void()>& restart);

    netlink::NetlinkSocket m_socket;
    int m_family;
};

} // namespace netvane::radio
