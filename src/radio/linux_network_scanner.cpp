#include "radio/linux_network_scanner.h"

#include "base/background_work.h"

namespace netvane::radio {

LinuxNetworkScanner::LinuxNetworkScanner(
    ScanContext context, std::shared_ptr<platform::WiFiClient> wifiClient)
    : m_context(std::move(context))
    , m_wifiClient(std::move(wifiClient))
{
}

void LinuxNetworkScanner::scan(QObject* owner, DeliverNetworks deliver)
{
    new NetworkScan(owner, m_context, std::move(deliver));
}

void LinuxNetworkScanner::readCurrentChannel(QObject* owner, DeliverChannel deliver)
{
    const auto read = [client = m_wifiClient]() -> std::optional<platform::WiFiChannel> {
        const auto interfaces = client ? client->interfaces()
                                       : std::vector<std::shared_ptr<platform::WiFiInterface>>();
        const auto link = interfaces.empty() ? std::nullopt : interfaces.front()->readLink();
        return link ? link->channel : std::nullopt;
    };
    base::runInBackground(m_context.queue, owner, read, std::move(deliver));
}

} // namespace netvane::radio
