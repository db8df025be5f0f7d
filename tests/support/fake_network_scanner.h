#pragma once

#include "platform/network_scanner.h"

#include <QPointer>

namespace netvane::test {

/// A scan that ends when and as the test says.
class FakeNetworkScanner : public platform::NetworkScanner {
public:
    using Networks = base::Result<std::vector<platform::NearbyNetwork>>;

    void scan(QObject* owner, DeliverNetworks deliver) override
    {
        ++scans;
        m_owner = owner;
        m_deliver = std::move(deliver);
    }
    void readCurrentChannel(QObject*, DeliverChannel deliver) override { deliver(currentChannel); }

    void finish(const Networks& networks)
    {
        if (m_owner && m_deliver)
            std::exchange(m_deliver, {})(networks);
    }

    int scans = 0;
    std::optional<platform::WiFiChannel> currentChannel;

private:
    QPointer<QObject> m_owner;
    DeliverNetworks m_deliver;
};

} // namespace netvane::test
