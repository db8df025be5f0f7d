#pragma once

// This room reads the Wi-Fi link, scans for networks and reads the permission to scan.
// Link and scan share the nl80211 messages and sockets and do not know each other.
// Everything from the kernel, the air and the bus is untrusted.

#include "platform/wifi_client.h"

#include <QByteArray>
#include <QString>

namespace netvane::radio {

/// Reads the link from nl80211 over generic netlink: needs no daemon and no privilege. Each read
/// opens its own socket, so that nothing is out of date after a driver was reloaded, and looks the
/// interface up by its name, because its index changes when an adapter is plugged in again.
class Nl80211WiFiClient : public platform::WiFiClient {
public:
    /// Null when this process cannot open a netlink socket. `sysfsRoot` is where sysfs(5) is
    /// mounted.
    static std::unique_ptr<Nl80211WiFiClient> create(
        const QString& sysfsRoot = QStringLiteral("/sys"));

    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override;

private:
    explicit Nl80211WiFiClient(const QString& sysfsRoot)
        : m_sysfsRoot(sysfsRoot)
    {
    }

    QString m_sysfsRoot;
};

} // namespace netvane::radio
