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
        network.bssid = QString::fromLatin1(record.bssid->toHex(':'));
    if (record.frequencyMhz)
        network.channel = channelOf(*record.frequencyMhz);
    return network;
}

/// Entries without an age are taken for old.
std::uint32_t ageOf(const BssRecord& record)
{
    return record.seenMsAgo.value_or(std::numeric_limits<std::uint32_t>::max());
}

/// Where a network stands in the list, and how old what is known of it is.
struct Place {
    size_t at;
    std::uint32_t age;
};

/// The younger word counts, but a name that only the older one has is kept.
void merge(platform::NearbyNetwork& known, Place& place, platform::NearbyNetwork network,
    std::uint32_t age)
{
    if (age < place.age) {
        place.age = age;
        std::swap(known, network);
    }
    if (!known.ssid)
        known.ssid = network.ssid;
}

} // namespace

std::vector<platform::NearbyNetwork> nearbyNetworks(const std::vector<BssRecord>& table)
{
    std::vector<platform::NearbyNetwork> networks;
    std::map<QByteArray, Place> places;
    for (const BssRecord& record : table) {
        platform::NearbyNetwork network = networkOf(record);
        const auto known = record.bssid ? places.find(*record.bssid) : places.end();
        if (known != places.end()) {
            Place& place = known->second;
            merge(networks[place.at], place, std::move(network), ageOf(record));
            continue;
        }
        if (record.bssid)
            places.emplace(*record.bssid, Place {networks.size(), ageOf(record)});
        networks.push_back(std::move(network));
    }
    return networks;
}

void addLater(std::vector<BssRecord>& table, const std::vector<BssRecord>& later,
    std::chrono::milliseconds passed)
{
    // What has no name to know it by is told again, or is gone.
    std::erase_if(table, [](const BssRecord& record) { return !record.bssid; });
    for (BssRecord& record : table) {
        if (record.seenMsAgo)
            *record.seenMsAgo += std::uint32_t(passed.count());
    }
    table.insert(table.end(), later.begin(), later.end());
}

} // namespace netvane::radio
