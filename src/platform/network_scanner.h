#pragma once

#include "base/result.h"
#include "platform/wifi_client.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

class QObject;

namespace netvane::platform {

/// A network in reach, as its beacons tell. Each field may be absent; none of them depends on
/// another.
struct NearbyNetwork {
    std::optional<QString> ssid; ///< as `ssidText` makes it; absent when the name is hidden
    std::optional<QString> bssid; ///< "02:00:00:00:01:00"
    std::optional<WiFiChannel> channel;
    std::optional<int> signalDbm;

    bool operator==(const NearbyNetwork&) const = default;
};

/// Looks for nearby networks, only when asked. Main thread; never blocks, and what still runs at
/// the end of the program holds nothing up.
class NetworkScanner {
public:
    using DeliverNetworks = std::function<void(const base::Result<std::vector<NearbyNetwork>>&)>;
    using DeliverChannel = std::function<void(std::optional<WiFiChannel>)>;

    virtual ~NetworkScanner() = default;

    /// Scans with the first of the `WiFiClient`'s interfaces and hands over every network once, or
    /// why there was no scan, in a sentence for the user: the kind NotFound means that there is no
    /// Wi-Fi interface, and nothing else. Takes seconds, half a minute at most. `deliver` is called
    /// later, and not once the owner is gone.
    virtual void scan(QObject* owner, DeliverNetworks deliver) = 0;

    /// Reads the channel that this interface is on; absent without a link. `deliver` as above.
    virtual void readCurrentChannel(QObject* owner, DeliverChannel deliver) = 0;
};

} // namespace netvane::platform
