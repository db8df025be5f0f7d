#pragma once

#include "platform/air.h"

namespace netvane::air {

using platform::AirNetwork;
using platform::AirReading;

/// What is older says nothing of now.
inline constexpr std::chrono::milliseconds kFresh = std::chrono::minutes(2);

/// The networks of all readings since it was made, each access point once. The kernel forgets a
/// network 30 seconds after it was heard last; here it stays for ten minutes.
class HeardNetworks {
public:
    void add(const AirReading& reading);

    /// Their ages are those at the last reading. What has no BSSID comes from that one alone.
    const std::vector<AirNetwork>& networks() const { return m_networks; }

private:
    std::vector<AirNetwork> m_networks;
    std::chrono::steady_clock::time_point m_at;
};

/// Whether it was heard within `kFresh`; one without an age was not.
bool isFresh(const AirNetwork& network);

} // namespace netvane::air
