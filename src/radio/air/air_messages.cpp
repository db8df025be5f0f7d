#include "radio/air/air_messages.h"

#include "base/visible_text.h"
#include "radio/air/air_networks.h"
#include "radio/air/air_rate.h"
#include "radio/nl80211_messages.h"

#include <algorithm>
#include <functional>

namespace netvane::radio {

using netlink::AttributeBytes;
using platform::AirChannel;
using platform::AirLink;
using platform::AirReading;
using platform::AirSubLink;
using Attributes = netlink::Attributes<NL80211_ATTR_MAX>;
using Info = netlink::Attributes<NL80211_STA_INFO_MAX>;

namespace {

constexpr double kMbmPerDbm = 100;
constexpr size_t kMostAntennas = 16;
constexpr size_t kMostLinks = 15; // the numbers 0 to 14
constexpr size_t kMostChannels = 1000;

/// The answers to one command.
template <typename Parse>
auto answersOf(const AirMessages& messages, std::uint8_t command, Parse parse)
{
    std::vector<std::decay_t<std::invoke_result_t<Parse, AttributeBytes>>> records;
    for (const AirMessage& message : messages) {
        if (message.command == command)
            records.push_back(parse(attributesOf(message)));
    }
    return records;
}

void completeCounters(platform::LinkCounters& known, const platform::LinkCounters& more)
{
    using platform::LinkCounters;
    for (const auto field : {&LinkCounters::sentPackets, &LinkCounters::retries,
             &LinkCounters::failed, &LinkCounters::beaconsLost})
        complete(known.*field, more.*field);
}

void completeRate(platform::AirRate& known, const Info& info, int attribute)
{
    if (known == platform::AirRate {} && info.has(attribute))
        known = parseAirRate(info.nested(attribute));
}

std::vector<int> antennasIn(AttributeBytes list)
{
    std::vector<int> signalsDbm;
    forEachNested(list, [&signalsDbm](int, AttributeBytes value) {
        if (value.size() == 1 && signalsDbm.size() < kMostAntennas)
            signalsDbm.push_back(std::int8_t(value[0]));
    });
    return signalsDbm;
}

/// The link with the identifier that these attributes have.
AirSubLink* subLinkOf(AirLink& link, const Attributes& attributes, int idAttribute)
{
    const auto id = attributes.number<std::uint8_t>(idAttribute);
    if (!id)
        return nullptr;
    const auto known = std::ranges::find(link.links, int(*id), &AirSubLink::id);
    if (known != link.links.end())
        return &*known;
    return link.links.size() < kMostLinks ? &link.links.emplace_back(AirSubLink {.id = *id})
                                          : nullptr;
}

std::optional<QString> addressIn(const Attributes& attributes)
{
    const auto bytes = attributes.bytes(NL80211_ATTR_MAC);
    return bytes && bytes->size() == 6 ? std::optional(addressText(*bytes)) : std::nullopt;
}

void addInterface(AirLink& link, AttributeBytes bytes)
{
    const Attributes attributes(bytes);
    if (const auto ssid = attributes.bytes(NL80211_ATTR_SSID); ssid && !link.ssid)
        link.ssid = base::ssidText(*ssid);
    complete(link.span, parseSpan(bytes));
    if (const auto mbm = attributes.number<std::uint32_t>(NL80211_ATTR_WIPHY_TX_POWER_LEVEL))
        link.transmitPowerDbm = std::int32_t(*mbm) / kMbmPerDbm;
    // The address in it is our own, not the access point's.
    forEachNested(attributes.nested(NL80211_ATTR_MLO_LINKS), [&link](int, AttributeBytes one) {
        if (auto* subLink = subLinkOf(link, Attributes(one), NL80211_ATTR_MLO_LINK_ID)) {
            complete(subLink->span, parseSpan(one));
            complete(link.span, subLink->span);
        }
    });
}

void addSubLink(AirLink& link, AttributeBytes bytes)
{
    const Attributes attributes(bytes);
    auto* subLink = subLinkOf(link, attributes, NL80211_ATTR_MLO_LINK_ID);
    if (!subLink)
        return;
    complete(subLink->bssid, addressIn(attributes));
    const auto statistics = attributes.nested(NL80211_ATTR_STA_INFO);
    const Info info(statistics);
    complete(subLink->signalDbm, asNumber<int>(info.number<std::int8_t>(NL80211_STA_INFO_SIGNAL)));
    completeRate(subLink->transmit, info, NL80211_STA_INFO_TX_BITRATE);
    completeRate(subLink->receive, info, NL80211_STA_INFO_RX_BITRATE);
    completeCounters(subLink->counters, parseCounters(statistics));
}

void addStation(AirLink& link, AttributeBytes bytes)
{
    const Attributes attributes(bytes);
    const auto statistics = attributes.nested(NL80211_ATTR_STA_INFO);
    const Info info(statistics);
    const auto dbm
        = [&info](int number) { return asNumber<int>(info.number<std::int8_t>(number)); };
    complete(link.bssid, addressIn(attributes));
    complete(link.signalDbm, dbm(NL80211_STA_INFO_SIGNAL));
    complete(link.averageSignalDbm, dbm(NL80211_STA_INFO_SIGNAL_AVG));
    complete(link.beaconSignalDbm, dbm(NL80211_STA_INFO_BEACON_SIGNAL_AVG));
    for (const int number : {NL80211_STA_INFO_CHAIN_SIGNAL_AVG, NL80211_STA_INFO_CHAIN_SIGNAL}) {
        if (link.antennaSignalsDbm.empty())
            link.antennaSignalsDbm = antennasIn(info.nested(number));
    }
    completeRate(link.transmit, info, NL80211_STA_INFO_TX_BITRATE);
    completeRate(link.receive, info, NL80211_STA_INFO_RX_BITRATE);
    completeCounters(link.counters, parseCounters(statistics));
    constexpr double kKbpsPerMbps = 1000;
    if (const auto kbps = info.number<std::uint32_t>(NL80211_STA_INFO_EXPECTED_THROUGHPUT))
        complete(link.expectedMbps, std::optional(*kbps / kKbpsPerMbps));
    if (const auto seconds = info.number<std::uint32_t>(NL80211_STA_INFO_CONNECTED_TIME))
        complete(link.connectedFor, std::optional(std::chrono::seconds(*seconds)));
    constexpr std::uint32_t kProtected = 1U << NL80211_STA_FLAG_MFP;
    if (const auto flags = info.number<nl80211_sta_flag_update>(NL80211_STA_INFO_STA_FLAGS);
        flags && (flags->mask & kProtected) != 0)
        complete(link.isProtected, std::optional((flags->set & kProtected) != 0));
    forEachNested(attributes.nested(NL80211_ATTR_MLO_LINKS),
        [&link](int, AttributeBytes one) { addSubLink(link, one); });
}

/// What the table of networks knows of the link. Of several links' the newest standard counts.
void addNetworks(AirLink& link, const std::vector<platform::AirNetwork>& networks)
{
    for (const auto& network : networks) {
        if (!network.isOurs)
            continue;
        if (!link.accessPoint || network.standard > link.accessPoint->standard)
            link.accessPoint = network;
        complete(link.ssid, network.ssid);
        complete(link.span, network.span);
        complete(link.bssid, network.deviceAddress ? network.deviceAddress : network.bssid);
        const auto subLink
            = std::ranges::find(link.links, network.linkId.value_or(-1), &AirSubLink::id);
        if (subLink == link.links.end())
            continue;
        complete(subLink->bssid, network.bssid);
        complete(subLink->span, network.span);
        complete(subLink->signalDbm, network.signalDbm);
    }
    std::ranges::sort(link.links, {}, &AirSubLink::id);
}

/// Marks the link's access point in `networks` where the driver does not.
std::optional<AirLink> linkOf(
    const AirMessages& messages, std::vector<platform::AirNetwork>& networks)
{
    const auto stations = answersOf(messages, NL80211_CMD_GET_STATION, parseStation);
    if (!hasLink(stations, answersOf(messages, NL80211_CMD_GET_SCAN, parseBss)))
        return {};
    AirLink link;
    for (const AirMessage& message : messages) {
        const auto bytes = attributesOf(message);
        if (message.command == NL80211_CMD_GET_INTERFACE)
            addInterface(link, bytes);
        else if (message.command == NL80211_CMD_GET_STATION && isAccessPoint(parseStation(bytes)))
            addStation(link, bytes);
        else if (message.command == NL80211_CMD_GET_POWER_SAVE)
            complete(link.powerSave, parsePowerSave(bytes));
    }
    for (auto& network : networks)
        network.isOurs = network.isOurs || (link.bssid && network.bssid == link.bssid);
    addNetworks(link, networks);
    const auto survey = answersOf(messages, NL80211_CMD_GET_SURVEY, parseSurvey);
    link.survey
        = currentChannel(survey, link.span ? std::optional(link.span->primaryMhz) : std::nullopt)
              .counts;
    return link;
}

std::optional<AirChannel> channelIn(AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_FREQUENCY_ATTR_MAX> attributes(bytes);
    const auto frequency = attributes.number<std::uint32_t>(NL80211_FREQUENCY_ATTR_FREQ);
    if (!frequency)
        return {};
    AirChannel channel {.frequencyMhz = *frequency,
        .isAllowed = !attributes.has(NL80211_FREQUENCY_ATTR_DISABLED),
        .isPassive = attributes.has(NL80211_FREQUENCY_ATTR_NO_IR),
        .needsRadarCheck = attributes.has(NL80211_FREQUENCY_ATTR_RADAR)};
    if (const auto mbm = attributes.number<std::uint32_t>(NL80211_FREQUENCY_ATTR_MAX_TX_POWER))
        channel.maximumDbm = *mbm / kMbmPerDbm;
    return channel;
}

/// The kernel tells a wiphy in pieces, one channel in each.
std::vector<AirChannel> channelsOf(const AirMessages& messages)
{
    std::vector<AirChannel> channels;
    const auto takeBand = [&channels](int, AttributeBytes band) {
        const netlink::Attributes<NL80211_BAND_ATTR_MAX> attributes(band);
        forEachNested(
            attributes.nested(NL80211_BAND_ATTR_FREQS), [&channels](int, AttributeBytes one) {
                if (const auto channel = channelIn(one); channel && channels.size() < kMostChannels)
                    channels.push_back(*channel);
            });
    };
    for (const AirMessage& message : messages) {
        if (message.command == NL80211_CMD_GET_WIPHY)
            forEachNested(
                Attributes(attributesOf(message)).nested(NL80211_ATTR_WIPHY_BANDS), takeBand);
    }
    std::ranges::stable_sort(channels, {}, &AirChannel::frequencyMhz);
    const auto isSame = [](const AirChannel& one, const AirChannel& other) {
        return one.frequencyMhz == other.frequencyMhz;
    };
    channels.erase(std::unique(channels.begin(), channels.end(), isSame), channels.end());
    for (const auto& survey : answersOf(messages, NL80211_CMD_GET_SURVEY, parseSurvey)) {
        const auto channel = std::ranges::find(channels, survey.frequencyMhz,
            [](const AirChannel& one) { return std::optional(one.frequencyMhz); });
        if (channel != channels.end())
            channel->survey = survey.counts;
    }
    return channels;
}

/// Of the adapter's own rules where it has any, else of those for all.
std::optional<QString> countryOf(const AirMessages& messages)
{
    std::optional<std::uint32_t> wiphy;
    std::optional<QString> general;
    std::optional<QString> own;
    for (const AirMessage& message : messages) {
        const Attributes attributes(attributesOf(message));
        const auto number = attributes.number<std::uint32_t>(NL80211_ATTR_WIPHY);
        if (message.command == NL80211_CMD_GET_INTERFACE)
            complete(wiphy, number);
        const auto letters = attributes.text(NL80211_ATTR_REG_ALPHA2);
        if (message.command != NL80211_CMD_GET_REG || !letters || letters->size() != 2)
            continue;
        const auto country = base::withVisibleControls(QString::fromLatin1(*letters));
        if (!number)
            complete(general, std::optional(country));
        else if (number == wiphy)
            complete(own, std::optional(country));
    }
    return own ? own : general;
}

} // namespace

AttributeBytes attributesOf(const AirMessage& message)
{
    return std::as_bytes(
        std::span(message.attributes.constData(), size_t(message.attributes.size())));
}

QByteArray bytesOf(AttributeBytes attributes)
{
    return {reinterpret_cast<const char*>(attributes.data()), qsizetype(attributes.size())};
}

void forEachNested(
    AttributeBytes list, const std::function<void(int number, AttributeBytes payload)>& take)
{
    const auto* one = reinterpret_cast<const nlattr*>(list.data());
    for (int left = int(list.size()); nla_ok(one, left); one = nla_next(one, &left))
        take(nla_type(one), {static_cast<const std::byte*>(nla_data(one)), size_t(nla_len(one))});
}

std::optional<platform::AirSpan> parseSpan(AttributeBytes bytes)
{
    constexpr std::array<std::pair<std::uint32_t, int>, 9> kWidths {
        {{NL80211_CHAN_WIDTH_20_NOHT, 20}, {NL80211_CHAN_WIDTH_20, 20}, {NL80211_CHAN_WIDTH_40, 40},
            {NL80211_CHAN_WIDTH_80, 80}, {NL80211_CHAN_WIDTH_80P80, 160},
            {NL80211_CHAN_WIDTH_160, 160}, {NL80211_CHAN_WIDTH_5, 5}, {NL80211_CHAN_WIDTH_10, 10},
            {NL80211_CHAN_WIDTH_320, 320}}};
    const Attributes attributes(bytes);
    const auto frequency = attributes.number<std::uint32_t>(NL80211_ATTR_WIPHY_FREQ);
    if (!frequency)
        return {};
    platform::AirSpan span {.primaryMhz = *frequency,
        .centreMhz = attributes.number<std::uint32_t>(NL80211_ATTR_CENTER_FREQ1),
        .secondCentreMhz = attributes.number<std::uint32_t>(NL80211_ATTR_CENTER_FREQ2)};
    const auto number = attributes.number<std::uint32_t>(NL80211_ATTR_CHANNEL_WIDTH);
    const auto* width = std::ranges::find(
        kWidths, number, [](const auto& one) { return std::optional(one.first); });
    if (width != kWidths.end())
        span.widthMhz = width->second;
    return span;
}

AirReading airReading(const AirMessages& messages)
{
    AirReading reading;
    reading.networks = networksOf(answersOf(messages, NL80211_CMD_GET_SCAN, parseAirNetwork));
    reading.link = linkOf(messages, reading.networks);
    reading.channels = channelsOf(messages);
    reading.country = countryOf(messages);
    return reading;
}

} // namespace netvane::radio
