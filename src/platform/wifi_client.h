#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace netvane::platform {

enum class ChannelBand {
    Unknown, ///< a channel in none of the bands below
    TwoGHz,
    FiveGHz,
    SixGHz,
};

/// A channel, identified by its number and band: 2.4, 5 and 6 GHz share some numbers (IEEE
/// 802.11-2020, Annex E).
struct WiFiChannel {
    int number = 0;
    ChannelBand band = ChannelBand::Unknown;

    bool operator==(const WiFiChannel&) const = default;
};

/// The band of a channel by its centre. 6 GHz begins at 5925 MHz, 5 GHz above 4900 MHz.
ChannelBand bandOf(std::uint32_t frequencyMhz);

/// The channel with this centre (IEEE 802.11-2020, Annex E); absent where the three bands have
/// none.
std::optional<WiFiChannel> channelOf(std::uint32_t frequencyMhz);

/// Counters of a link, each since the association or since some earlier moment: only differences
/// mean something, and a value below the one before means that it began anew.
struct LinkCounters {
    std::optional<std::uint64_t> sentPackets; ///< NL80211_STA_INFO_TX_PACKETS
    std::optional<std::uint64_t> retries; ///< ..._TX_RETRIES
    std::optional<std::uint64_t> failed; ///< ..._TX_FAILED: given up after all retries
    std::optional<std::uint64_t> beaconsLost; ///< ..._BEACON_LOSS
    std::optional<std::uint64_t> channelActiveMs; ///< NL80211_SURVEY_INFO_TIME
    std::optional<std::uint64_t> channelBusyMs; ///< ..._TIME_BUSY

    bool operator==(const LinkCounters&) const = default;
};

/// How much a counter grew; zero where it is absent or began anew.
inline double grown(
    const std::optional<std::uint64_t>& from, const std::optional<std::uint64_t>& to)
{
    return from && to && *to >= *from ? double(*to - *from) : 0;
}

/// One reading of a Wi-Fi link. Each field is absent if the driver does not report it or there is
/// no link; each may be absent without the others. There is a link once the access point has let
/// the interface in: it is associated, and authorized as far as the driver knows.
struct LinkReading {
    std::optional<QString> ssid; ///< as `ssidText` makes it
    /// The network that the interface asks to let it in, or signs in to, instead of a link.
    std::optional<QString> joiningSsid;
    std::optional<int> signalDbm;
    std::optional<int> noiseDbm;
    std::optional<double> transmitRateMbps;
    std::optional<ChannelBand> band; ///< absent without a current channel
    std::optional<WiFiChannel> channel; ///< also absent if no band has such a channel
    std::optional<QString> interfaceName;
    std::optional<QString> bssid; ///< of the access point, "02:00:00:00:01:00"
    std::optional<double> receiveRateMbps;
    std::optional<bool> powerSave; ///< NL80211_CMD_GET_POWER_SAVE
    LinkCounters counters;

    bool operator==(const LinkReading&) const = default;
};

/// A Wi-Fi interface in station mode.
class WiFiInterface {
public:
    virtual ~WiFiInterface() = default;

    /// Whether the radio is on: false only if it is known to be blocked or the interface is down.
    /// Does not block; any thread.
    virtual bool powerOn() const = 0;

    /// Reads the link; absent if the interface was removed or is no longer a station. May wait for
    /// the driver, for a bounded time: for background threads, one call at a time.
    virtual std::optional<LinkReading> readLink() = 0;
};

/// The system's Wi-Fi.
class WiFiClient {
public:
    virtual ~WiFiClient() = default;

    /// The interfaces in station mode; empty without Wi-Fi. The first is the one to use: the one
    /// whose link was read last, while it has it; then those with a link that carry a default IPv4
    /// route, those with a link, those that sign in, those that are on, the rest; within each the
    /// kernel's order. May wait for the kernel, for a bounded time: for background threads.
    virtual std::vector<std::shared_ptr<WiFiInterface>> interfaces() = 0;
};

} // namespace netvane::platform
