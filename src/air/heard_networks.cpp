#include "air/heard_networks.h"

#include <algorithm>

namespace netvane::air {
namespace {

constexpr std::chrono::milliseconds kKept = std::chrono::minutes(10);
/// Far more than a place has; names of access points can be made up without end.
constexpr size_t kMost = 1000;

bool isNewer(const AirNetwork& one, const AirNetwork& other)
{
    return one.age.value_or(kKept) <= other.age.value_or(kKept);
}

} // namespace

void HeardNetworks::add(const AirReading& reading)
{
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(reading.at - m_at);
    m_at = reading.at;
    std::erase_if(m_networks, [](const AirNetwork& network) { return !network.bssid; });
    for (auto& network : m_networks) {
        network.age = network.age.value_or(kKept) + passed;
        network.isOurs = false;
    }
    std::erase_if(m_networks, [](const AirNetwork& network) { return network.age > kKept; });
    for (const auto& network : reading.networks) {
        const auto known = network.bssid
            ? std::ranges::find(m_networks, network.bssid, &AirNetwork::bssid)
            : m_networks.end();
        if (known == m_networks.end()) {
            if (m_networks.size() < kMost)
                m_networks.push_back(network);
            continue;
        }
        // One that hides its name is also listed without it, and one that moved is listed twice.
        const auto name = network.ssid ? network.ssid : known->ssid;
        const bool isOurs = network.isOurs || known->isOurs;
        if (isNewer(network, *known))
            *known = network;
        known->ssid = name;
        known->isOurs = isOurs;
    }
}

bool isFresh(const AirNetwork& network)
{
    return network.age && *network.age <= kFresh;
}

} // namespace netvane::air
