#include "radio/nl80211_messages.h"

#include "base/visible_text.h"

#include <algorithm>
#include <functional>

namespace netvane::radio {
namespace {

constexpr int kAddressSize = 6;
constexpr double kMbmPerDbm = 100.0;
constexpr double kMbpsPerRateUnit = 0.1; // rates count in 100 kbit/s

/// BITRATE32 first: the 16 bits of BITRATE end at 6.5 Gbit/s, and drivers leave it out above that.
std::optional<double> parseRate(netlink::AttributeBytes attributes)
{
    const netlink::Attributes<NL80211_RATE_INFO_MAX> rate(attributes);
    if (const auto wide = rate.number<std::uint32_t>(NL80211_RATE_INFO_BITRATE32))
        return *wide * kMbpsPerRateUnit;
    if (const auto narrow = rate.number<std::uint16_t>(NL80211_RATE_INFO_BITRATE))
        return *narrow * kMbpsPerRateUnit;
    return {};
}

std::optional<QByteArray> addressIn(std::optional<QByteArray> bytes)
{
    return bytes && bytes->size() == kAddressSize ? std::move(bytes) : std::nullopt;
}

/// An interface with several links has no channel of its own; each link in the list has one.
std::optional<std::uint32_t> firstLinkFrequency(netlink::AttributeBytes links)
{
    const auto* link = reinterpret_cast<const nlattr*>(links.data());
    for (int left = int(links.size()); nla_ok(link, left); link = nla_next(link, &left)) {
        const netlink::Attributes<NL80211_ATTR_MAX> attributes(
            {static_cast<const std::byte*>(nla_data(link)), size_t(nla_len(link))});
        if (const auto frequency = attributes.number<std::uint32_t>(NL80211_ATTR_WIPHY_FREQ))
            return frequency;
    }
    return {};
}

bool isAccessPoint(const StationRecord& station)
{
    return !station.directPeer && station.associated.value_or(true);
}

/// The first value in the records that count. The kernel may send a peer in several messages of
/// which only one has the values. `valueOf` is a member or a function.
template <typename Record, typename Counts, typename ValueOf>
auto firstPresent(const std::vector<Record>& records, Counts counts, ValueOf valueOf)
{
    for (const auto& record : records) {
        if (std::invoke(counts, record) && std::invoke(valueOf, record))
            return std::invoke(valueOf, record);
    }
    return std::decay_t<std::invoke_result_t<ValueOf, const Record&>>();
}

/// The channel in use; empty where it is not listed.
SurveyRecord currentChannel(
    const std::vector<SurveyRecord>& survey, std::optional<std::uint32_t> frequencyMhz)
{
    auto current = std::ranges::find_if(survey, &SurveyRecord::inUse);
    if (current == survey.end() && frequencyMhz)
        current = std::ranges::find(survey, frequencyMhz, &SurveyRecord::frequencyMhz);
    return current == survey.end() ? SurveyRecord {} : *current;
}

platform::LinkCounters countersOf(
    const std::vector<StationRecord>& stations, const SurveyRecord& channel)
{
    const auto count = [&stations](auto member) {
        return firstPresent(stations, isAccessPoint,
            [member](const StationRecord& station) { return station.counters.*member; });
    };
    using platform::LinkCounters;
    return {
        .sentPackets = count(&LinkCounters::sentPackets),
        .retries = count(&LinkCounters::retries),
        .failed = count(&LinkCounters::failed),
        .beaconsLost = count(&LinkCounters::beaconsLost),
        .channelActiveMs = channel.activeMs,
        .channelBusyMs = channel.busyMs,
    };
}

/// A list of attributes that hold one frequency each.
std::vector<std::uint32_t> frequenciesIn(netlink::AttributeBytes list)
{
    constexpr size_t kSize = NLA_HDRLEN + sizeof(std::uint32_t);
    std::vector<std::uint32_t> frequencies(list.size() / kSize);
    for (size_t i = 0; i < frequencies.size(); ++i)
        std::memcpy(&frequencies[i], &list[i * kSize + NLA_HDRLEN], sizeof(std::uint32_t));
    return frequencies;
}

} // namespace

InterfaceRecord parseInterface(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    InterfaceRecord record {
        .index = attributes.number<std::uint32_t>(NL80211_ATTR_IFINDEX),
        .name = attributes.text(NL80211_ATTR_IFNAME),
        .type = attributes.number<std::uint32_t>(NL80211_ATTR_IFTYPE),
        .ssid = attributes.bytes(NL80211_ATTR_SSID),
        .frequencyMhz = attributes.number<std::uint32_t>(NL80211_ATTR_WIPHY_FREQ),
    };
    if (!record.frequencyMhz)
        record.frequencyMhz = firstLinkFrequency(attributes.nested(NL80211_ATTR_MLO_LINKS));
    return record;
}

StationRecord parseStation(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const netlink::Attributes<NL80211_STA_INFO_MAX> info(attributes.nested(NL80211_ATTR_STA_INFO));
    StationRecord record;
    if (const auto flags = info.number<nl80211_sta_flag_update>(NL80211_STA_INFO_STA_FLAGS)) {
        const auto isSet
            = [&flags](int flag) { return (flags->set & flags->mask & (1U << flag)) != 0; };
        const auto ifKept = [&flags, isSet](int flag) {
            return (flags->mask & (1U << flag)) != 0 ? std::optional(isSet(flag)) : std::nullopt;
        };
        record.associated = ifKept(NL80211_STA_FLAG_ASSOCIATED);
        record.authorized = ifKept(NL80211_STA_FLAG_AUTHORIZED);
        record.directPeer = isSet(NL80211_STA_FLAG_TDLS_PEER);
    }
    for (const int number : {NL80211_STA_INFO_SIGNAL, NL80211_STA_INFO_SIGNAL_AVG,
             NL80211_STA_INFO_BEACON_SIGNAL_AVG}) {
        if (const auto signal = info.number<std::int8_t>(number)) {
            record.signalDbm = *signal;
            break;
        }
    }
    if (info.has(NL80211_STA_INFO_TX_BITRATE))
        record.transmitRateMbps = parseRate(info.nested(NL80211_STA_INFO_TX_BITRATE));
    if (info.has(NL80211_STA_INFO_RX_BITRATE))
        record.receiveRateMbps = parseRate(info.nested(NL80211_STA_INFO_RX_BITRATE));
    record.address = addressIn(attributes.bytes(NL80211_ATTR_MAC));
    record.counters = {
        .sentPackets = info.number<std::uint32_t>(NL80211_STA_INFO_TX_PACKETS),
        .retries = info.number<std::uint32_t>(NL80211_STA_INFO_TX_RETRIES),
        .failed = info.number<std::uint32_t>(NL80211_STA_INFO_TX_FAILED),
        .beaconsLost = info.number<std::uint32_t>(NL80211_STA_INFO_BEACON_LOSS),
    };
    return record;
}

SurveyRecord parseSurvey(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const netlink::Attributes<NL80211_SURVEY_INFO_MAX> info(
        attributes.nested(NL80211_ATTR_SURVEY_INFO));
    return {
        .frequencyMhz = info.number<std::uint32_t>(NL80211_SURVEY_INFO_FREQUENCY),
        .noiseDbm = info.number<std::int8_t>(NL80211_SURVEY_INFO_NOISE),
        .inUse = info.has(NL80211_SURVEY_INFO_IN_USE),
        .activeMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME),
        .busyMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME_BUSY),
    };
}

BssRecord parseBss(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const netlink::Attributes<NL80211_BSS_MAX> bss(attributes.nested(NL80211_ATTR_BSS));
    BssRecord record {.frequencyMhz = bss.number<std::uint32_t>(NL80211_BSS_FREQUENCY)};
    record.seenMsAgo = bss.number<std::uint32_t>(NL80211_BSS_SEEN_MS_AGO);
    record.bssid = addressIn(bss.bytes(NL80211_BSS_BSSID));
    if (const auto signal = bss.number<std::int32_t>(NL80211_BSS_SIGNAL_MBM))
        record.signalDbm = qRound(*signal / kMbmPerDbm);
    record.associated
        = bss.number<std::uint32_t>(NL80211_BSS_STATUS) == NL80211_BSS_STATUS_ASSOCIATED;
    // Probe responses name a hidden network that its beacons do not.
    for (const int number : {NL80211_BSS_INFORMATION_ELEMENTS, NL80211_BSS_BEACON_IES}) {
        if (const auto elements = bss.bytes(number); elements && !record.ssid)
            record.ssid = ssidElement(*elements);
    }
    return record;
}

std::optional<bool> parsePowerSave(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const auto state = attributes.number<std::uint32_t>(NL80211_ATTR_PS_STATE);
    return state ? std::optional(*state == NL80211_PS_ENABLED) : std::nullopt;
}

std::optional<ScanEvent> scanEvent(const netlink::GenericMessage& message)
{
    using Kind = ScanEvent::Kind;
    constexpr std::array kKinds {Kind::Started, Kind::ResultsReady, Kind::Aborted};
    const auto command = std::ranges::find(kScanCommands, message.command);
    if (command == kScanCommands.end())
        return {};
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(message.attributes);
    ScanEvent event {.kind = kKinds[size_t(command - kScanCommands.begin())],
        .interfaceIndex = attributes.number<std::uint32_t>(NL80211_ATTR_IFINDEX)};
    if (attributes.has(NL80211_ATTR_SCAN_FREQUENCIES))
        event.frequenciesMhz = frequenciesIn(attributes.nested(NL80211_ATTR_SCAN_FREQUENCIES));
    return event;
}

QString addressText(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(':'));
}

std::optional<QByteArray> ssidElement(const QByteArray& elements)
{
    for (qsizetype at = 0; at + 2 <= elements.size();) {
        const int number = uchar(elements[at]);
        const qsizetype length = uchar(elements[at + 1]);
        if (at + 2 + length > elements.size())
            return {};
        if (number == 0)
            return elements.sliced(at + 2, length);
        at += 2 + length;
    }
    return {};
}

bool isStation(const InterfaceRecord& interface)
{
    return interface.type == NL80211_IFTYPE_STATION && interface.index && interface.name;
}

bool needsScanTable(const InterfaceRecord& interface, const std::vector<StationRecord>& stations)
{
    if (std::ranges::any_of(stations, isAccessPoint))
        return !interface.ssid || !interface.frequencyMhz;
    return interface.ssid.has_value();
}

bool isAssociated(
    const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks)
{
    return std::ranges::any_of(stations, isAccessPoint)
        || std::ranges::any_of(networks, &BssRecord::associated);
}

std::optional<QByteArray> bssidOf(
    const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks)
{
    const auto station = firstPresent(stations, isAccessPoint, &StationRecord::address);
    return station ? station : firstPresent(networks, &BssRecord::associated, &BssRecord::bssid);
}

platform::LinkReading linkReading(const InterfaceRecord& interface,
    const std::vector<StationRecord>& stations, const std::vector<SurveyRecord>& survey,
    const std::vector<BssRecord>& networks)
{
    platform::LinkReading reading;
    if (interface.name)
        reading.interfaceName = base::withVisibleControls(QString::fromUtf8(*interface.name));
    auto ssid = interface.ssid;
    if (!ssid)
        ssid = firstPresent(networks, &BssRecord::associated, &BssRecord::ssid);
    const auto name = ssid ? base::ssidText(*ssid) : std::nullopt;
    const auto authorized = firstPresent(stations, isAccessPoint, &StationRecord::authorized);
    // While an interface scans or is joining a network, it has a channel but no link. With a wrong
    // password it is associated again and again, and never authorized.
    if (!isAssociated(stations, networks) || !authorized.value_or(true)) {
        reading.joiningSsid = name;
        return reading;
    }
    auto frequency = interface.frequencyMhz;
    if (!frequency)
        frequency = firstPresent(networks, &BssRecord::associated, &BssRecord::frequencyMhz);
    reading.ssid = name;
    reading.signalDbm = firstPresent(stations, isAccessPoint, &StationRecord::signalDbm);
    const auto channel = currentChannel(survey, frequency);
    reading.noiseDbm = channel.noiseDbm;
    reading.counters = countersOf(stations, channel);
    if (const auto bssid = bssidOf(stations, networks))
        reading.bssid = addressText(*bssid);
    reading.receiveRateMbps
        = firstPresent(stations, isAccessPoint, &StationRecord::receiveRateMbps);
    reading.transmitRateMbps
        = firstPresent(stations, isAccessPoint, &StationRecord::transmitRateMbps);
    if (frequency) {
        reading.band = platform::bandOf(*frequency);
        reading.channel = platform::channelOf(*frequency);
    }
    return reading;
}

} // namespace netvane::radio
