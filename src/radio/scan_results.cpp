#include "radio/scan_results.h"

#include "base/visible_text.h"

#include <limits>
#include <map>

namespace netvane::radio {
namespace {

platform::NearbyNetwork networkOf(const BssRecord& record)
{
    platform::NearbyNetwork network {.signalDbm = record.signalDbm};
    if (record.ssid)
        network.ssid = base::ssidText(*record.ssid);
    if (record.bssid)
        network.bssid = addressText(*record.bssid);
    if (record.frequencyMhz)
        network.channel = platform::channelOf(*record.frequencyMhz);
    return network;
}

/// Entries without an age count as the oldest.
std::uint32_t ageOf(const BssRecord& record)
{
    return record.seenMsAgo.value_or(std::numeric_limits<std::uint32_t>::max());
}

/// The index of a network in the result, and the age of its newest entry in milliseconds.
struct Position {
    size_t index;
    std::uint32_t age;
};

/// The newer entry wins, but a name that only the older one has is kept.
void merge(platform::NearbyNetwork& known, Position& position, platform::NearbyNetwork network,
    std::uint32_t age)
{
    if (age < position.age) {
        position.age = age;
        std::swap(known, network);
    }
    if (!known.ssid)
        known.ssid = network.ssid;
}

} // namespace

std::vector<platform::NearbyNetwork> nearbyNetworks(const std::vector<BssRecord>& table)
{
    std::vector<platform::NearbyNetwork> networks;
    std::map<QByteArray, Position> positions;
    for (const BssRecord& record : table) {
        platform::NearbyNetwork network = networkOf(record);
        const auto known = record.bssid ? positions.find(*record.bssid) : positions.end();
        if (known != positions.end()) {
            Position& position = known->second;
            merge(networks[position.index], position, std::move(network), ageOf(record));
            continue;
        }
        if (record.bssid)
            positions.emplace(*record.bssid, Position {networks.size(), ageOf(record)});
        networks.push_back(std::move(network));
    }
    return networks;
}

void addNewerTable(std::vector<BssRecord>& table, const std::vector<BssRecord>& newer,
    std::chrono::milliseconds elapsed)
{
    // Entries without a BSSID cannot be matched; the newer table lists those that are still there.
    std::erase_if(table, [](const BssRecord& record) { return !record.bssid; });
    for (BssRecord& record : table) {
        if (record.seenMsAgo)
            *record.seenMsAgo += std::uint32_t(elapsed.count());
    }
    table.insert(table.end(), newer.begin(), newer.end());
}

} // namespace netvane::radio
