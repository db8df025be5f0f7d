#pragma once

#include "radio/network_scan.h"

namespace netvane::radio {

/// Scans through the service that owns the radio (NetworkManager, iwd, wpa_supplicant, else nl80211
/// itself) and reads the networks from the kernel's scan table, which needs no privilege.
class LinuxNetworkScanner : public platform::NetworkScanner {
public:
    /// `wifiClient` may be null: no Wi-Fi.
    LinuxNetworkScanner(ScanContext context, std::shared_ptr<platform::WiFiClient> wifiClient);

    void scan(QObject* owner, DeliverNetworks deliver) override;
    void readCurrentChannel(QObject* owner, DeliverChannel deliver) override;

private:
    const ScanContext m_context;
    const std::shared_ptr<platform::WiFiClient> m_wifiClient;
};

} // namespace netvane::radio
