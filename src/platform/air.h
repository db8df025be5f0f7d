#pragma once

#include "base/result.h"
#include "platform/wifi_client.h"

#include <chrono>

namespace netvane::platform {

// What the kernel knows of the radio and of the air around it, in full. Each field is absent where
// the driver or the access point does not say it.

/// The generations of Wi-Fi, oldest first. HT is Wi-Fi 4, VHT 5, HE 6 (6E in 6 GHz), EHT 7.
enum class AirStandard { Legacy, Ht, Vht, He, Eht };

/// A rate as the driver describes it (NL80211_RATE_INFO_*), of the last frame and not an average.
struct AirRate {
    std::optional<double> mbps;
    std::optional<AirStandard> standard;
    std::optional<int> streams;
    std::optional<int> mcs; ///< index of modulation and coding; of HT within the streams, 0 to 7
    std::optional<int> widthMhz;
    std::optional<double> guardIntervalUs;

    bool operator==(const AirRate&) const = default;
};

/// What a channel covers. The primary channel is the one that a network is named by.
struct AirSpan {
    std::uint32_t primaryMhz = 0;
    std::optional<std::uint32_t> centreMhz;
    std::optional<std::uint32_t> secondCentreMhz; ///< of 80+80 MHz only
    std::optional<int> widthMhz; ///< 160 for 80+80 MHz

    bool operator==(const AirSpan&) const = default;
};

/// What an access point accepts (IEEE 802.11-2020, 9.4.2.24; WPA: the vendor's element). Nothing of
/// it: an open network.
struct AirSecurity {
    bool wep = false; ///< the privacy bit without any element
    bool wpa = false; ///< WPA of 2003, by key or by account
    bool wpa2 = false; ///< a shared key
    bool wpa3 = false; ///< a shared key by SAE
    bool enterprise = false; ///< an account (802.1X)
    bool enterprise192 = false; ///< an account by the suite of 192 bits
    bool owe = false; ///< encrypted without a key
    bool other = false; ///< something that is not known here, or that came cut off
    bool protectsManagement = false; ///< protection of management frames is offered
    bool requiresProtection = false; ///< and nobody joins without it

    bool operator==(const AirSecurity&) const = default;
};

/// One access point in the kernel's table of networks, from its beacons and probe responses.
struct AirNetwork {
    std::optional<QString> ssid; ///< as `ssidText` makes it; absent when hidden
    std::optional<QString> bssid; ///< "02:00:00:00:01:00"
    std::optional<AirSpan> span;
    std::optional<int> signalDbm; ///< of the frame heard last
    std::optional<std::chrono::milliseconds> age; ///< since that frame
    std::optional<AirStandard> standard; ///< the newest that it announces
    std::optional<int> streams; ///< most that it receives
    std::optional<int> stations; ///< BSS Load: connected to it, by its own count
    std::optional<double> utilization; ///< BSS Load: share of time that it finds the channel busy
    std::optional<AirSecurity> security;
    bool offersNeighbours = false; ///< 802.11k, neighbour reports
    bool offersTransition = false; ///< 802.11v, BSS transition
    bool offersFastTransition = false; ///< 802.11r
    std::optional<int> mobilityDomain; ///< of 802.11r: fast among those with the same
    std::optional<QString> country; ///< two letters
    std::optional<QString> deviceAddress; ///< of a device with several links, each one network
    std::optional<int> linkId; ///< of that link
    bool isOurs = false; ///< the link's access point, or one link of it

    bool operator==(const AirNetwork&) const = default;
};

/// What the radio counted on a channel since some moment (NL80211_SURVEY_INFO_*), in milliseconds:
/// only differences mean something.
struct AirSurvey {
    std::optional<std::uint64_t> activeMs; ///< listened or sent
    std::optional<std::uint64_t> busyMs; ///< of these, somebody sent
    std::optional<std::uint64_t> transmitMs; ///< we sent
    std::optional<std::uint64_t> receiveMs; ///< something was received, of any network
    std::optional<std::uint64_t> ownReceiveMs; ///< of our network
    std::optional<int> noiseDbm;

    bool operator==(const AirSurvey&) const = default;
};

/// A channel of 20 MHz that the adapter knows.
struct AirChannel {
    std::uint32_t frequencyMhz = 0;
    bool isAllowed = true; ///< by the rules of the country in force
    bool isPassive = false; ///< nobody may begin to send there (no IR)
    bool needsRadarCheck = false;
    std::optional<double> maximumDbm; ///< transmit power
    std::optional<AirSurvey> survey;

    bool operator==(const AirChannel&) const = default;
};

/// One link of several (Wi-Fi 7).
struct AirSubLink {
    int id = 0;
    std::optional<QString> bssid;
    std::optional<AirSpan> span;
    std::optional<int> signalDbm;
    AirRate transmit;
    AirRate receive;
    LinkCounters counters; ///< but not those of the channel

    bool operator==(const AirSubLink&) const = default;
};

/// The link to the access point.
struct AirLink {
    std::optional<QString> ssid; ///< as `ssidText` makes it
    std::optional<QString> bssid; ///< of the device where it has several links
    std::optional<AirSpan> span; ///< of the first of several
    std::optional<AirNetwork> accessPoint; ///< what it announces
    AirRate transmit;
    AirRate receive;
    std::optional<int> signalDbm; ///< of the last frame
    std::optional<int> averageSignalDbm;
    std::optional<int> beaconSignalDbm;
    std::vector<int> antennaSignalsDbm; ///< averages where there are any, else of the last frame
    LinkCounters counters; ///< but not those of the channel
    AirSurvey survey; ///< of the channel in use
    std::optional<double> expectedMbps; ///< of payload, as the driver's choice of rates expects
    std::optional<std::chrono::seconds> connectedFor;
    std::optional<bool> powerSave;
    std::optional<double> transmitPowerDbm;
    std::optional<bool> isProtected; ///< management frames are
    std::vector<AirSubLink> links; ///< empty with one link

    bool operator==(const AirLink&) const = default;
};

/// A Wi-Fi interface in station mode.
struct AirAdapter {
    /// Why it comes where it comes; the first that is true.
    enum class State {
        KeptLink, ///< its link was read last
        CarriesRoute, ///< a link with a default IPv4 route
        Linked,
        SigningIn,
        On,
        Off,
    };
    QString name; ///< "wlan0"
    State state = State::Off;
    bool isUsed = false;
    std::optional<QString> driver;
    std::optional<QString> driverVersion;
    std::optional<QString> firmware;

    bool operator==(const AirAdapter&) const = default;
};

/// Everything, of one moment.
struct AirReading {
    std::chrono::steady_clock::time_point at;
    std::vector<AirAdapter> adapters; ///< in the order of use
    std::optional<AirLink> link; ///< of the adapter that is used
    /// In the kernel's order; what scans of others, or of the user, left there.
    std::vector<AirNetwork> networks;
    std::vector<AirChannel> channels; ///< by frequency
    std::optional<QString> country; ///< whose rules are in force; "00" where that is not known

    bool operator==(const AirReading&) const = default;
};

/// How the link went between two readings of it. Absent where a counter is, or began anew.
struct AirChange {
    std::optional<double> sentPerMinute; ///< packets
    std::optional<double> retriesPerMinute;
    std::optional<double> failuresPerMinute; ///< packets given up
    std::optional<double> lostBeaconsPerMinute;
    // Shares of the time, 0 to 1.
    std::optional<double> busy;
    std::optional<double> transmit; ///< we sent
    std::optional<double> ownReceive; ///< our access point sent
    std::optional<double> others; ///< busy by none of these, where both are known

    bool operator==(const AirChange&) const = default;
};
/// All absent unless both are about the same access point.
AirChange changeBetween(const AirReading& before, const AirReading& after);

/// The share of the time, 0 to 1, that a channel was busy from one reading of its counters to
/// another; since they began to count where `before` is empty. Absent without a time.
std::optional<double> busyShare(const AirSurvey& before, const AirSurvey& after);

/// Reads the air, when somebody asks and never by itself. It starts no scan.
class AirReader {
public:
    virtual ~AirReader() = default;

    /// About the interface with this name, or the one in use when it is empty or not there. May
    /// wait for a driver, for a bounded time: for background threads, several at once. A failure is
    /// a sentence for the user without its full stop.
    virtual base::Result<AirReading> read(const QString& interfaceName) = 0;
};

} // namespace netvane::platform
