#pragma once

#include "radio/nl80211_messages.h"

#include <atomic>

namespace netvane::radio {

class Nl80211Socket;

/// The answers about an interface that tell whether it is associated, and with what.
struct Association {
    std::vector<StationRecord> stations;
    std::vector<BssRecord> networks; ///< read only where `needsScanTable`
};
Association readAssociation(Nl80211Socket& wifi, const InterfaceRecord& interface);

/// An interface and what decides how soon it is used.
struct RankedInterface {
    InterfaceRecord interface;
    bool isKept = false; ///< its link was read last
    bool hasLink = false;
    bool isAssociated = false; ///< also without a link: while it signs in
    std::optional<std::uint32_t> routeMetric; ///< of a default route through it; less is preferred
    bool isOn = false;
};
/// Puts the one to use first, as `platform::WiFiClient::interfaces` says.
void sortByUse(std::vector<RankedInterface>& interfaces);

/// The lowest metric of the default routes through an interface; absent without one. `routes` is
/// the text of /proc/net/route (proc(5)): the main table's IPv4 routes, the default ones first.
std::optional<std::uint32_t> defaultRouteMetric(
    const QByteArray& routes, const QByteArray& interfaceName);

/// Which of several interfaces is read and scans. Any thread.
class InterfaceChoice {
public:
    /// The interfaces in station mode, the one to use first. With more than one, what ranks them is
    /// read as well.
    std::vector<InterfaceRecord> inOrder(Nl80211Socket& wifi) const;
    /// The same with what ranks them, which is read for a single one, too.
    std::vector<RankedInterface> ranked(Nl80211Socket& wifi) const;
    /// The link of the interface with this index was read: it stays the first while it has it.
    void keep(std::uint32_t index) { m_kept = index; }

private:
    std::vector<RankedInterface> rank(
        Nl80211Socket& wifi, const std::vector<InterfaceRecord>& stations) const;

    std::atomic<std::uint32_t> m_kept {0}; ///< 0 is no interface's index
};

} // namespace netvane::radio
