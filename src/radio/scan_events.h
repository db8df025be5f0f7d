#pragma once

#include "base/file_descriptor.h"
#include "netlink/netlink_socket.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::radio {

/// An event that the kernel sends about every scan, whichever program requested it.
struct ScanEvent {
    enum class Kind {
        Started, ///< NL80211_CMD_TRIGGER_SCAN
        ResultsReady, ///< NL80211_CMD_NEW_SCAN_RESULTS
        Aborted, ///< NL80211_CMD_SCAN_ABORTED
    };
    Kind kind = Kind::Started;
    /// Its channels, by their centres (NL80211_ATTR_SCAN_FREQUENCIES); absent where the kernel does
    /// not say.
    std::optional<std::vector<std::uint32_t>> frequenciesMhz;
};

/// A socket in nl80211's multicast group "scan", which anybody may join.
class ScanEvents {
public:
    /// The socket of `openScanEvents`; in tests any datagram socket.
    ScanEvents(base::FileDescriptor socket, int family)
        : m_socket(std::move(socket))
        , m_family(family)
    {
    }

    /// Readable when there is something to receive.
    int descriptor() const { return m_socket.get(); }

    /// The events about this interface that arrived since the last call; never waits.
    std::vector<ScanEvent> receive(std::uint32_t interfaceIndex) const;

private:
    base::FileDescriptor m_socket;
    int m_family; ///< nl80211's id, assigned at boot
};

/// May wait for the kernel, within a limit: for background threads.
base::Result<ScanEvents> openScanEvents();

/// The events about one interface in a datagram of netlink messages. Lengths are checked.
std::vector<ScanEvent> scanEvents(
    netlink::AttributeBytes datagram, int family, std::uint32_t interfaceIndex);

} // namespace netvane::radio
