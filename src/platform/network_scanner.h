#pragma once

#include "base/result.h"
#include "platform/wifi_client.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

class QObject;

namespace netvane::platform {

/// A network in range, from its beacons. Each field may be absent without the others.
struct NearbyNetwork {
    std::optional<QString> ssid; ///< as `ssidText` makes it; absent when the name is hidden
    std::optional<QString> bssid; ///< "02:00:00:00:01:00"
    std::optional<WiFiChannel> channel;
    std::optional<int> signalDbm;

    bool operator==(const NearbyNetwork&) const = default;
};

/// Scans for nearby networks on request. Main thread; never blocks, and a running scan does not
/// delay the end of the program.
class NetworkScanner {
public:
    using DeliverNetworks = std::function<void(const base::Result<std::vector<NearbyNetwork>>&)>;
    using DeliverChannel = std::function<void(std::optional<WiFiChannel>)>;

    virtual ~NetworkScanner() = default;

    /// Scans with the first of the `WiFiClient`'s interfaces and delivers every network once, or
    /// the reason why there was no scan, in a sentence for the user. The kind NotFound means only
    /// that there is no Wi-Fi interface. Takes seconds, half a minute at most. `deliver` is called
    /// later, and not after the owner is destroyed.
    virtual void scan(QObject* owner, DeliverNetworks deliver) = 0;

    /// Reads the current channel of this interface; absent without a link. `deliver` as above.
    virtual void readCurrentChannel(QObject* owner, DeliverChannel deliver) = 0;
};

} // namespace netvane::platform
