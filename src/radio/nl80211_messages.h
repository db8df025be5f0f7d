#pragma once

#include "netlink/netlink_attributes.h"
#include "platform/air.h"

#include <QByteArray>

#include <linux/nl80211.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace netvane::radio {

// The answers of nl80211 (linux/nl80211.h), one function for each kind of message. All take the
// attributes of one message, check every length, and leave absent what is missing or malformed.

/// NL80211_CMD_NEW_INTERFACE.
struct InterfaceRecord {
    std::optional<std::uint32_t> index;
    std::optional<QByteArray> name; ///< absent for devices without a network interface, as P2P ones
    std::optional<std::uint32_t> type; ///< enum nl80211_iftype
    /// Raw bytes; of the network that it joined or only asks to let it in.
    std::optional<QByteArray> ssid;
    /// Of the first link of several; also while it asks to join a network.
    std::optional<std::uint32_t> frequencyMhz;

    bool operator==(const InterfaceRecord&) const = default;
};
InterfaceRecord parseInterface(netlink::AttributeBytes attributes);

/// NL80211_CMD_NEW_STATION: a peer, in station mode the access point.
struct StationRecord {
    std::optional<bool> associated; ///< absent when the driver does not keep the flag
    /// False until the keys are agreed on; at once true in an open network; absent as above.
    std::optional<bool> authorized;
    bool directPeer = false; ///< a TDLS neighbour, not the access point
    std::optional<int> signalDbm; ///< last frame, else the average, else the beacons' average
    std::optional<double> transmitRateMbps;
    std::optional<double> receiveRateMbps;
    /// Six bytes; of the device where it has several links, not of one of them.
    std::optional<QByteArray> address;
    platform::LinkCounters counters; ///< but not those of the channel

    bool operator==(const StationRecord&) const = default;
};
StationRecord parseStation(netlink::AttributeBytes attributes);
/// Or else a neighbour, or one that only asks.
bool isAccessPoint(const StationRecord& station);
/// The counters in NL80211_ATTR_STA_INFO.
platform::LinkCounters parseCounters(netlink::AttributeBytes stationInfo);

/// NL80211_CMD_NEW_SURVEY_RESULTS: one channel.
struct SurveyRecord {
    std::optional<std::uint32_t> frequencyMhz;
    bool inUse = false; ///< many drivers never set it
    platform::AirSurvey counts;

    bool operator==(const SurveyRecord&) const = default;
};
SurveyRecord parseSurvey(netlink::AttributeBytes attributes);

/// NL80211_CMD_NEW_SCAN_RESULTS: one network in the kernel's table.
struct BssRecord {
    std::optional<std::uint32_t> frequencyMhz;
    std::optional<QByteArray> ssid; ///< raw bytes of element 0; present and empty when hidden
    std::optional<QByteArray> bssid; ///< six bytes
    std::optional<int> signalDbm; ///< of the frame heard last; some drivers know no dBm
    std::optional<std::uint32_t> seenMsAgo;
    bool associated = false;

    bool operator==(const BssRecord&) const = default;
};
BssRecord parseBss(netlink::AttributeBytes attributes);

/// The answer to NL80211_CMD_GET_POWER_SAVE: whether the radio may sleep.
std::optional<bool> parsePowerSave(netlink::AttributeBytes attributes);

/// An event about a scan, whichever program requested it.
struct ScanEvent {
    enum class Kind {
        Started, ///< NL80211_CMD_TRIGGER_SCAN
        ResultsReady, ///< NL80211_CMD_NEW_SCAN_RESULTS
        Aborted, ///< NL80211_CMD_SCAN_ABORTED
    };
    Kind kind = Kind::Started;
    std::optional<std::uint32_t> interfaceIndex; ///< absent for a device without an interface
    /// Its channels, by their centres (NL80211_ATTR_SCAN_FREQUENCIES); absent where the kernel does
    /// not say.
    std::optional<std::vector<std::uint32_t>> frequenciesMhz;
};
/// The commands of these events.
inline constexpr std::array<std::uint8_t, 3> kScanCommands {
    NL80211_CMD_TRIGGER_SCAN, NL80211_CMD_NEW_SCAN_RESULTS, NL80211_CMD_SCAN_ABORTED};
/// Absent for other messages.
std::optional<ScanEvent> scanEvent(const netlink::GenericMessage& message);

/// "02:00:00:00:01:00".
QString addressText(const QByteArray& bytes);

/// The SSID element (number 0) of the elements of a beacon or probe response (IEEE 802.11-2020,
/// 9.4.2.1); absent when there is none before the first element that does not fit.
std::optional<QByteArray> ssidElement(const QByteArray& elements);

/// Whether it is an interface that joins networks, and has a name.
bool isStation(const InterfaceRecord& interface);

/// Whether the interface is associated: the access point is one of its stations or, where the
/// driver lists none, the table of networks marks one. Being allowed to send is another matter.
bool isAssociated(
    const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks);

/// The six bytes of the access point's address, where `isAssociated` finds one.
std::optional<QByteArray> bssidOf(
    const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks);

/// Combines the answers about one interface.
platform::LinkReading linkReading(const InterfaceRecord& interface,
    const std::vector<StationRecord>& stations, const std::vector<SurveyRecord>& survey,
    const std::vector<BssRecord>& networks);

/// The survey of the channel in use; empty where it is not listed.
SurveyRecord currentChannel(
    const std::vector<SurveyRecord>& survey, std::optional<std::uint32_t> frequencyMhz);

/// Whether there is a link: associated, and not known to be without permission to send.
bool hasLink(const std::vector<StationRecord>& stations, const std::vector<BssRecord>& networks);

/// Whether the table of networks is needed: to complete the reading of an associated interface, or
/// to tell whether one without stations that has a network's name is associated.
bool needsScanTable(const InterfaceRecord& interface, const std::vector<StationRecord>& stations);

} // namespace netvane::radio
