#include "radio/air/air_networks.h"

#include "base/visible_text.h"
#include "radio/air/air_messages.h"
#include "radio/air/elements.h"
#include "radio/nl80211_messages.h"

#include <QHash>

namespace netvane::radio {

using platform::AirNetwork;

namespace {

// The kernel itself keeps a thousand.
constexpr size_t kMostNetworks = 4000;

/// Whether `other` replaces `known`; an entry without an age counts as old.
bool isBetter(const AirNetwork& other, const AirNetwork& known)
{
    if (other.isOurs != known.isOurs)
        return other.isOurs;
    return other.age && (!known.age || *other.age < *known.age);
}

} // namespace

AirNetwork parseAirNetwork(netlink::AttributeBytes bytes)
{
    constexpr std::uint16_t kPrivacy = 0x10; // of the capability field
    const auto record = parseBss(bytes);
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const netlink::Attributes<NL80211_BSS_MAX> bss(attributes.nested(NL80211_ATTR_BSS));
    AirNetwork network {.signalDbm = record.signalDbm, .isOurs = record.associated};
    if (record.ssid)
        network.ssid = base::ssidText(*record.ssid);
    if (record.bssid)
        network.bssid = addressText(*record.bssid);
    if (record.frequencyMhz)
        network.span = {.primaryMhz = *record.frequencyMhz};
    if (record.seenMsAgo)
        network.age = std::chrono::milliseconds(*record.seenMsAgo);
    if (const auto capability = bss.number<std::uint16_t>(NL80211_BSS_CAPABILITY))
        network.security = {.wep = (*capability & kPrivacy) != 0};
    const auto beacon = bss.bytes(NL80211_BSS_BEACON_IES);
    const auto answer = bss.bytes(NL80211_BSS_INFORMATION_ELEMENTS);
    if (const auto& elements = answer ? answer : beacon)
        readElements(elementsOf(*elements), network);
    if (answer && beacon) {
        // Answers to probes are old where nobody asks; the load in the beacons is that of now.
        AirNetwork now;
        readElements(elementsOf(*beacon), now);
        if (now.stations) {
            network.stations = now.stations;
            network.utilization = now.utilization;
        }
    }
    complete(network.linkId, asNumber<int>(bss.number<std::uint8_t>(NL80211_BSS_MLO_LINK_ID)));
    const auto device = bss.bytes(NL80211_BSS_MLD_ADDR);
    if (device && device->size() == 6)
        complete(network.deviceAddress, std::optional(addressText(*device)));
    return network;
}

std::vector<AirNetwork> networksOf(std::vector<AirNetwork> table)
{
    std::vector<AirNetwork> networks;
    QHash<QString, size_t> positions;
    for (AirNetwork& network : table) {
        if (networks.size() >= kMostNetworks)
            break;
        const auto position
            = network.bssid ? positions.constFind(*network.bssid) : positions.cend();
        if (position == positions.cend()) {
            if (network.bssid)
                positions.insert(*network.bssid, networks.size());
            networks.push_back(std::move(network));
            continue;
        }
        AirNetwork& known = networks[*position];
        if (isBetter(network, known))
            std::swap(known, network);
        complete(known.ssid, network.ssid);
    }
    return networks;
}

} // namespace netvane::radio
