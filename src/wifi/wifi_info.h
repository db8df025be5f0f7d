#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace netvane::wifi {

enum class WiFiFrequency {
    twoPointFourGHz,
    fiveGHz,
    sixGHz,
    unknown, ///< no channel
};

/// The text for users: "2.4 GHz", "6 GHz (WiFi 6E)", "Unknown".
QString displayName(WiFiFrequency frequency);

enum class SignalQuality {
    excellent, ///< -59 dBm and above
    good, ///< -69 to -60 dBm
    fair, ///< -79 to -70 dBm
    poor, ///< -80 dBm and below
    unknown, ///< no signal reading
};

SignalQuality signalQuality(std::optional<int> signalDbm);
/// The enumerator's own name, for reports.
QString caseName(SignalQuality quality);

/// One snapshot of the machine's Wi-Fi link. Any field may be absent without the others.
struct WiFiInfo {
    std::chrono::system_clock::time_point timestamp;
    std::optional<QString> ssid; ///< absent if not associated or hidden
    WiFiFrequency frequency = WiFiFrequency::unknown;
    std::optional<int> linkRate; ///< transmit rate in whole Mbps, above 0
    std::optional<int> signalStrength; ///< dBm
    std::optional<int> noise; ///< dBm
    std::optional<QString> interfaceName;
    std::optional<int> mcsIndex;
    std::optional<int> spatialStreams;
    std::optional<int> channelWidth; ///< MHz

    /// Identity in lists: seconds since 1970 in the shortest text that reads back the same.
    QString id() const;
    SignalQuality signalQuality() const { return wifi::signalQuality(signalStrength); }
    /// The Wi-Fi standard that the modulation, or lacking that the band, suggests.
    QString phyMode() const;

    bool operator==(const WiFiInfo&) const = default;
};

/// Receives every snapshot that the sampler takes, changed or not. Main thread.
class WiFiSnapshotObserver {
public:
    virtual ~WiFiSnapshotObserver() = default;
    virtual void checkForNetworkChanges(const WiFiInfo& wifiInfo) = 0;
};

} // namespace netvane::wifi
