#pragma once

#include "radio/network_scan.h"

namespace netvane::radio {

/// Scans through whoever owns the radio (NetworkManager, iwd, wpa_supplicant, else nl80211 itself)
/// and takes the networks from the kernel, whose table anybody may read.
class LinuxNetworkScanner : public platform::NetworkScanner {
public:
    /// `wifiClient` may be null: no Wi-Fi.
    LinuxNetworkScanner(ScanMeans means, std::shared_ptr<platform::WiFiClient> wifiClient);

    void scan(QObject* owner, DeliverNetworks deliver) override;
    void readCurrentChannel(QObject* owner, DeliverChannel deliver) override;

private:
    const ScanMeans m_means;
    const std::shared_ptr<platform::WiFiClient> m_wifiClient;
};

} // namespace netvane::radio
