#pragma once

#include "platform/wifi_client.h"

#include <QByteArray>
#include <QString>

namespace netvane::radio {

/// Wi-Fi by nl80211 over generic netlink: no daemon, no privilege. Every read opens a socket of its
/// own, so nothing stale survives a driver that was reloaded, and the interface is looked up by its
/// name, since its number changes when an adapter is plugged in again.
class Nl80211WiFiClient : public platform::WiFiClient {
public:
    /// Null when this process may not have a netlink socket. `sysfsRoot` is where sysfs(5) stands.
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

/// Whether the interface is up and nothing blocks its radio, from `class/net/NAME/flags`
/// (IFF_UP) and the rfkill switches of its wiphy; true when sysfs tells neither. Touches no
/// netlink, so that it never waits for a driver.
bool isRadioOn(const QString& sysfsRoot, const QByteArray& interfaceName);

} // namespace netvane::radio
