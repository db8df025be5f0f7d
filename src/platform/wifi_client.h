#pragma once

#include <QString>

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

/// One reading of a Wi-Fi link. Each field is absent if the driver does not report it or the
/// interface is not associated; each may be absent without the others.
struct LinkReading {
    std::optional<QString> ssid; ///< as `ssidText` makes it
    std::optional<int> signalDbm;
    std::optional<int> noiseDbm;
    std::optional<double> transmitRateMbps;
    std::optional<ChannelBand> band; ///< absent without a current channel
    std::optional<WiFiChannel> channel; ///< also absent if no band has such a channel
    std::optional<QString> interfaceName;

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

    /// The interfaces in station mode, in the kernel's order; empty without Wi-Fi. May wait for the
    /// kernel, for a bounded time: for background threads.
    virtual std::vector<std::shared_ptr<WiFiInterface>> interfaces() = 0;
};

} // namespace netvane::platform
