#pragma once

#include "netlink/netlink_socket.h"

#include <linux/netlink.h>

#include <cstdint>
#include <vector>

namespace netvane::radio {

/// A generic netlink socket for requests to nl80211 (linux/nl80211.h). May wait for a driver,
/// within the limits of `NetlinkSocket`: for background threads, one at a time.
class Nl80211Socket {
public:
    /// NotAvailable or NotFound where the kernel has no nl80211 at all.
    static base::Result<Nl80211Socket> open();

    /// All records that `command` lists, about one interface or (index 0) about all. After a
    /// failure the records that came before it are returned.
    template <typename Parse>
    auto dump(std::uint8_t command, std::uint32_t index, Parse parse)
    {
        std::vector<decltype(parse(netlink::AttributeBytes {}))> records;
        (void)dumpInto(records, command, index, parse);
        return records;
    }

    /// The same for callers that must tell a failure from an empty list.
    template <typename Record, typename Parse>
    base::Result<std::monostate> dumpInto(
        std::vector<Record>& records, std::uint8_t command, std::uint32_t index, Parse parse)
    {
        return requestRecords(
            NLM_F_DUMP, command, index,
            [&](netlink::AttributeBytes attributes) { records.push_back(parse(attributes)); },
            [&records] { records.clear(); });
    }

    /// The one record that `command` returns about an interface, if it does.
    template <typename Parse>
    auto get(std::uint8_t command, std::uint32_t index, Parse parse)
    {
        decltype(parse(netlink::AttributeBytes {})) record;
        (void)requestRecords(
            0, command, index,
            [&](netlink::AttributeBytes attributes) { record = parse(attributes); }, [] {});
        return record;
    }

    /// Starts a scan of all channels for all networks (NL80211_CMD_TRIGGER_SCAN, requires
    /// CAP_NET_ADMIN). Returns when it has started.
    base::Result<std::monostate> triggerScan(std::uint32_t index);

private:
    Nl80211Socket(netlink::NetlinkSocket socket, int family)
        : m_socket(std::move(socket))
        , m_family(family)
    {
    }

    /// Null when there is no memory.
    netlink::NetlinkMessage newMessage(std::uint8_t command, int flags, std::uint32_t index) const;
    base::Result<std::monostate> requestRecords(int flags, std::uint8_t command,
        std::uint32_t index, const std::function<void(netlink::AttributeBytes)>& take,
        const std::function<void()>& restart);

    netlink::NetlinkSocket m_socket;
    int m_family;
};

} // namespace netvane::radio
