// Everything that a pass over the radio returns: interfaces, stations, surveys, networks with the
// elements of their beacons, the channels. A recording of it says the same after it was written and
// read again, and one that is redacted is still one.
#include "fuzz_target.h"
#include "radio/air/recording_redaction.h"

#include <linux/nl80211.h>

using namespace netvane;

namespace {

constexpr int kCommands[] = {NL80211_CMD_GET_INTERFACE, NL80211_CMD_GET_STATION,
    NL80211_CMD_GET_SURVEY, NL80211_CMD_GET_SCAN, NL80211_CMD_GET_WIPHY, NL80211_CMD_GET_REG,
    NL80211_CMD_GET_POWER_SAVE, NL80211_CMD_AUTHENTICATE};

QByteArray attributeOf(int number, const QByteArray& payload)
{
    const nlattr header {
        .nla_len = uint16_t(payload.size() + NLA_HDRLEN), .nla_type = uint16_t(number)};
    auto bytes = QByteArray(reinterpret_cast<const char*>(&header), sizeof header) + payload;
    bytes.append(NLA_ALIGN(payload.size()) - payload.size(), '\0');
    return bytes;
}

/// Any bytes; or a network of any elements.
radio::AirMessage takeMessage(FuzzedDataProvider& input)
{
    if (input.ConsumeBool())
        return {uint8_t(input.PickValueInArray(kCommands)), fuzz::takeBytes(input, 1024)};
    const auto mhz = input.PickValueInArray<uint32_t>({2412, 2472, 5180, 5500, 5955, 7115, 920});
    return {NL80211_CMD_GET_SCAN,
        attributeOf(NL80211_ATTR_BSS,
            attributeOf(NL80211_BSS_FREQUENCY, QByteArray(reinterpret_cast<const char*>(&mhz), 4))
                + attributeOf(NL80211_BSS_INFORMATION_ELEMENTS, fuzz::takeBytes(input, 1024)))};
}

} // namespace

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    radio::AirRecording recording {.moments = {{}}};
    auto& messages = recording.moments.front().messages;
    while (input.remaining_bytes() > 0 && messages.size() < 16)
        messages.push_back(takeMessage(input));

    const auto reading = radio::readingAt(recording, 0);
    require(reading.networks.size() <= messages.size(), "no network is made up");
    for (const auto& network : reading.networks) {
        if (network.ssid)
            requireLine(*network.ssid);
        require(!network.streams || (*network.streams >= 1 && *network.streams <= 8), "streams");
        require(!network.utilization || (*network.utilization >= 0 && *network.utilization <= 1),
            "a share");
        const auto span = network.span.value_or(platform::AirSpan {});
        require(!span.widthMhz || (*span.widthMhz >= 20 && *span.widthMhz <= 320), "a width");
        require(!span.widthMhz || span.centreMhz, "a span has a centre");
        require(!span.widthMhz || std::abs(int(*span.centreMhz) - int(span.primaryMhz)) <= 150,
            "a span has its primary channel");
    }
    require(
        radio::recordingOf(radio::recordingText(recording)) == recording, "it reads what it wrote");
    const auto redacted = radio::redacted(recording);
    require(redacted.moments.front().messages.size() == messages.size(), "no message is lost");
    (void)radio::readingAt(redacted, 0);
}
