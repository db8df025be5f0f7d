#include "radio/nl80211_messages.h"

#include "base/visible_text.h"
#include "radio/air/air_messages.h"
#include "radio/air/air_rate.h"
#include "radio/air/elements.h"

#include <algorithm>
#include <functional>

namespace netvane::radio {
namespace {

constexpr int kAddressSize = 6;
constexpr double kMbmPerDbm = 100.0;

std::optional<QByteArray> addressIn(std::optional<QByteArray> bytes)
{
    return bytes && bytes->size() == kAddressSize ? std::move(bytes) : std::nullopt;
}

/// An interface with several links has no channel of its own; each link in the list has one.
std::optional<std::uint32_t> firstLinkFrequency(netlink::AttributeBytes links)
{
    std::optional<std::uint32_t> first;
    forEachNested(links, [&first](int, netlink::AttributeBytes link) {
        if (const auto span = parseSpan(link); span && !first)
            first = span->primaryMhz;
    });
    return first;
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
        .channelActiveMs = channel.counts.activeMs,
        .channelBusyMs = channel.counts.busyMs,
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
        record.transmitRateMbps = parseAirRate(info.nested(NL80211_STA_INFO_TX_BITRATE)).mbps;
    if (info.has(NL80211_STA_INFO_RX_BITRATE))
        record.receiveRateMbps = parseAirRate(info.nested(NL80211_STA_INFO_RX_BITRATE)).mbps;
    record.address = addressIn(attributes.bytes(NL80211_ATTR_MAC));
    record.counters = parseCounters(attributes.nested(NL80211_ATTR_STA_INFO));
    return record;
}

bool isAccessPoint(const StationRecord& station)
{
    return !station.directPeer && station.associated.value_or(true);
}

platform::LinkCounters parseCounters(netlink::AttributeBytes stationInfo)
{
    const netlink::Attributes<NL80211_STA_INFO_MAX> info(stationInfo);
    return {
        .sentPackets = info.number<std::uint32_t>(NL80211_STA_INFO_TX_PACKETS),
        .retries = info.number<std::uint32_t>(NL80211_STA_INFO_TX_RETRIES),
        .failed = info.number<std::uint32_t>(NL80211_STA_INFO_TX_FAILED),
        .beaconsLost = info.number<std::uint32_t>(NL80211_STA_INFO_BEACON_LOSS),
    };
}

SurveyRecord parseSurvey(netlink::AttributeBytes bytes)
{
    const netlink::Attributes<NL80211_ATTR_MAX> attributes(bytes);
    const netlink::Attributes<NL80211_SURVEY_INFO_MAX> info(
        attributes.nested(NL80211_ATTR_SURVEY_INFO));
    return {
        .frequencyMhz = info.number<std::uint32_t>(NL80211_SURVEY_INFO_FREQUENCY),
        .inUse = info.has(NL80211_SURVEY_INFO_IN_USE),
        .counts = {
            .activeMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME),
            .busyMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME_BUSY),
            .transmitMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME_TX),
            .receiveMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME_RX),
            .ownReceiveMs = info.number<std::uint64_t>(NL80211_SURVEY_INFO_TIME_BSS_RX),
            .noiseDbm = info.number<std::int8_t>(NL80211_SURVEY_INFO_NOISE),
        },
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
    std::optional<QByteArray> ssid;
    forEachElement(elementsOf(elements), [&ssid](int number, ElementBytes body) {
        if (number == kSsid && !ssid)
            ssid = QByteArray(reinterpret_cast<const char*>(body.data()), qsizetype(body.size()));
    });
    return ssid;
}

bool isStation(const InterfaceRecord& interface)
{
    return interface.type == NL80211_IFTYPE_STATION && interface.index && interface.name;
}

SurveyRecord currentChannel(
    const std::vector<SurveyRecord>& survey, std::optional<std::uint32_t> frequencyMhz)
{
    auto current = std::ranges::find_if(survey, &SurveyRecord::inUse);
    if (current == survey.end() && frequencyMhz)
        current = std::ranges::find(survey, frequencyMhz, &SurveyRecord::frequencyMhz);
    return current == survey.end() ? SurveyRecord {} : *current;
}

bool hasLink(const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks)
{
    return isAssociated(stations, networks)
        && firstPresent(stations, isAccessPoint, &StationRecord::authorized).value_or(true);
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
    // While an interface scans or is joining a network, it has a channel but no link. With a wrong
    // password it is associated again and again, and never authorized.
    if (!hasLink(stations, networks)) {
        reading.joiningSsid = name;
        return reading;
    }
    auto frequency = interface.frequencyMhz;
    if (!frequency)
        frequency = firstPresent(networks, &BssRecord::associated, &BssRecord::frequencyMhz);
    reading.ssid = name;
    reading.signalDbm = firstPresent(stations, isAccessPoint, &StationRecord::signalDbm);
    const auto channel = currentChannel(survey, frequency);
    reading.noiseDbm = channel.counts.noiseDbm;
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
