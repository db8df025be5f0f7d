#include "demo/air.h"

#include "air/channel_plan.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

using platform::AirChannel;
using platform::AirNetwork;
using platform::AirSpan;
using platform::AirStandard;
using platform::ChannelBand;

std::uint32_t frequencyOf(const platform::WiFiChannel& channel)
{
    const int base = channel.band == ChannelBand::TwoGHz ? 2407
        : channel.band == ChannelBand::FiveGHz           ? 5000
                                                         : 5950;
    return std::uint32_t(base + 5 * channel.number);
}

AirSpan spanOf(const platform::WiFiChannel& channel)
{
    const int width = channel.band == ChannelBand::TwoGHz ? 20
        : channel.band == ChannelBand::FiveGHz            ? 80
                                                          : 160;
    const std::uint32_t primary = frequencyOf(channel);
    AirSpan span {.primaryMhz = primary, .centreMhz = primary, .widthMhz = 20};
    for (const auto& block : air::blocks(channel.band, width)) {
        if (width > 20 && block.range.low < int(primary) && block.range.high > int(primary)) {
            span.centreMhz = std::uint32_t(block.range.low + block.range.high) / 2;
            span.widthMhz = width;
        }
    }
    return span;
}

/// As varied as a street. Only some access points tell their load.
AirNetwork airNetwork(const platform::NearbyNetwork& nearby, size_t index)
{
    static constexpr std::array kLoads {0.31, 0.12, 0.52, 0.08, 0.24};
    AirNetwork network {.ssid = nearby.ssid,
        .bssid = nearby.bssid,
        .span = spanOf(*nearby.channel),
        .signalDbm = nearby.signalDbm,
        .age = 1s * (index * 7 % 41),
        .standard = index % 3 == 0 ? AirStandard::He
            : index % 3 == 1       ? AirStandard::Vht
                                   : AirStandard::Ht,
        .security = platform::AirSecurity {
            .wpa2 = index % 4 != 3, .wpa3 = index % 4 < 2, .protectsManagement = index % 4 < 2}};
    if (index % 3 != 1) {
        network.utilization = kLoads.at(index % kLoads.size());
        network.stations = int(index % 7);
    }
    return network;
}

/// As in the EU: half of 6 GHz, and no higher channels of 5 GHz.
std::vector<AirChannel> channels()
{
    std::vector<AirChannel> all;
    for (int number = 1; number <= 13; ++number)
        all.push_back({.frequencyMhz = frequencyOf({number, ChannelBand::TwoGHz})});
    for (const auto band : {ChannelBand::FiveGHz, ChannelBand::SixGHz}) {
        const int first = band == ChannelBand::FiveGHz ? 36 : 1;
        const int last = band == ChannelBand::FiveGHz ? 144 : 233;
        for (int number = first; number <= last; number += 4) {
            if (band == ChannelBand::FiveGHz && number > 64 && number < 100)
                continue;
            all.push_back({.frequencyMhz = frequencyOf({number, band}),
                .isAllowed = band == ChannelBand::FiveGHz ? number <= 140 : number <= 93,
                .needsRadarCheck = band == ChannelBand::FiveGHz && number >= 52});
        }
    }
    return all;
}

platform::AirLink airLink(
    const platform::LinkReading& reading, AirNetwork& accessPoint, std::chrono::milliseconds time)
{
    accessPoint.isOurs = true;
    accessPoint.age = 0s;
    accessPoint.signalDbm = reading.signalDbm;
    const auto part = [time](int percent) { return std::uint64_t(time.count() * percent / 100); };
    platform::AirLink link {.ssid = reading.ssid,
        .bssid = accessPoint.bssid,
        .span = accessPoint.span,
        .accessPoint = accessPoint,
        .signalDbm = reading.signalDbm,
        .averageSignalDbm = reading.signalDbm,
        .counters = reading.counters,
        .survey = {.activeMs = part(100),
            .busyMs = part(38),
            .transmitMs = part(4),
            .ownReceiveMs = part(9),
            .noiseDbm = reading.noiseDbm},
        .powerSave = true,
        .transmitPowerDbm = 20,
        .isProtected = accessPoint.security->protectsManagement};
    link.transmit = {.mbps = reading.transmitRateMbps,
        .standard = accessPoint.standard,
        .streams = 2,
        .widthMhz = accessPoint.span->widthMhz};
    link.receive = link.transmit;
    if (reading.signalDbm)
        link.antennaSignalsDbm = {*reading.signalDbm - 1, *reading.signalDbm - 4};
    return link;
}

} // namespace

platform::AirReading airReading(const Scene& scene, const platform::LinkReading& link,
    std::chrono::steady_clock::time_point now)
{
    platform::AirReading reading {.at = now, .channels = channels(), .country = u"DE"_s};
    const bool hasLink = scene.hasRadio && link.ssid && link.channel;
    reading.adapters = {{.name = u"wlan0"_s,
        .state = !scene.hasRadio ? platform::AirAdapter::State::Off
            : hasLink            ? platform::AirAdapter::State::CarriesRoute
                                 : platform::AirAdapter::State::On,
        .isUsed = true,
        .driver = u"iwlwifi"_s,
        .firmware = u"77.2df8986f.0"_s}};
    if (!scene.hasRadio)
        return reading;
    for (const auto& nearby : nearbyNetworks())
        reading.networks.push_back(airNetwork(nearby, reading.networks.size()));
    if (!hasLink)
        return reading;
    const std::uint32_t primary = frequencyOf(*link.channel);
    auto ours = std::ranges::find_if(reading.networks, [&](const AirNetwork& network) {
        return network.ssid == link.ssid && network.span->primaryMhz == primary;
    });
    if (ours == reading.networks.end()) {
        const platform::NearbyNetwork missing {
            link.ssid, u"02:00:00:00:00:01"_s, link.channel, link.signalDbm};
        ours = reading.networks.insert(ours, airNetwork(missing, 0));
    }
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    reading.link = airLink(link, *ours, time);
    return reading;
}

} // namespace netvane::demo
