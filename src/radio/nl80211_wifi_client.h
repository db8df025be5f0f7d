#pragma once

// This room reads the Wi-Fi link, scans for networks and reads the permission to scan.
// Link and scan share the nl80211 messages and sockets and do not know each other.
// Everything from the kernel, the air and the bus is untrusted.

#include "platform/wifi_client.h"

namespace netvane::radio {

class InterfaceChoice;

/// Reads the link from nl80211 over generic netlink: needs no daemon and no privilege. Each read
/// opens its own socket, so that nothing is out of date after a driver was reloaded, and looks the
/// interface up by its name, because its index changes when an adapter is plugged in again.
class Nl80211WiFiClient : public platform::WiFiClient {
public:
    /// Null when this process cannot open a netlink socket.
    static std::unique_ptr<Nl80211WiFiClient> create(std::shared_ptr<InterfaceChoice> choice);

    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override;

private:
    explicit Nl80211WiFiClient(std::shared_ptr<InterfaceChoice> choice)
        : m_choice(std::move(choice))
    {
    }

    const std::shared_ptr<InterfaceChoice> m_choice;
};

} // namespace netvane::radio
