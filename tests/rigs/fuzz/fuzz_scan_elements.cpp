// The elements of beacons, which anyone in reach can send, and the table of networks made of them.
#include "fuzz_target.h"
#include "radio/scan_results.h"

#include <QSet>

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr size_t kLongestBeacon = 300;
    constexpr size_t kMost = 16;
    std::vector<radio::BssRecord> table;
    while (input.remaining_bytes() > 0 && table.size() < kMost) {
        radio::BssRecord network;
        if (input.ConsumeBool())
            network.bssid = QByteArray("\2\0\0\0\0", 5) + char(input.ConsumeIntegralInRange(0, 3));
        if (input.ConsumeBool())
            network.seenMsAgo = input.ConsumeIntegral<uint32_t>();
        if (input.ConsumeBool())
            network.frequencyMhz = input.ConsumeIntegralInRange<uint32_t>(2400, 7200);
        network.ssid = radio::ssidElement(fuzz::takeBytes(input, kLongestBeacon));
        fuzz::require(!network.ssid || network.ssid->size() <= 255, "an element is no longer");
        table.push_back(network);
    }
    QSet<QString> known;
    const auto networks = radio::nearbyNetworks(table);
    fuzz::require(networks.size() <= table.size(), "no network is made up");
    for (const auto& network : networks) {
        if (network.ssid) {
            fuzz::require(!network.ssid->isEmpty(), "a name that is told is not empty");
            fuzz::requireLine(*network.ssid);
        }
        if (!network.bssid)
            continue;
        fuzz::require(!known.contains(*network.bssid), "an access point stands there once");
        known.insert(*network.bssid);
    }
    auto merged = table;
    radio::addNewerTable(
        merged, table, std::chrono::milliseconds(input.ConsumeIntegral<uint16_t>()));
    fuzz::require(merged.size() <= 2 * table.size(), "nothing is added but what was heard later");
}
