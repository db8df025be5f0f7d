#pragma once

#include "base/work_queues.h"
#include "platform/network_configuration.h"
#include "platform/route_monitor.h"

#include <QStringList>

#include <functional>
#include <optional>

class QObject;

namespace netvane::probes {

/// Reads the network configuration of this machine for the probes and the dashboard, with the slow
/// part in the background. Each call reads it again. Failures are not reported; an unknown value is
/// absent or empty.
class NetworkUtils {
public:
    /// Both outlive this.
    NetworkUtils(platform::NetworkConfiguration& configuration, base::WorkQueue& userInitiated)
        : m_configuration(configuration)
        , m_userInitiated(userInitiated)
    {
    }

    /// The address of the default IPv4 router, dotted decimal. Any thread; may wait for the kernel,
    /// so the main thread uses `getDefaultGateway`.
    std::optional<QString> readDefaultGateway() const { return m_configuration.defaultRouter(); }

    /// Reads the gateway in the background and calls `completion` with it, once and on the main
    /// thread, unless `context` is destroyed before. Main thread.
    void getDefaultGateway(
        QObject* context, std::function<void(std::optional<QString>)> completion) const;

    /// The same, now and whenever the default route may have changed. An answer that a later one
    /// has overtaken is not told. `routes` outlives `context`.
    void followDefaultGateway(platform::RouteMonitor& routes, QObject* context,
        std::function<void(const std::optional<QString>&)> take) const;

    /// The DNS servers, the primary one first. Any thread; reads two small files at most.
    QStringList getDNSServers() const { return m_configuration.dnsServers(); }

private:
    platform::NetworkConfiguration& m_configuration;
    base::WorkQueue& m_userInitiated;
};

/// Whether there is an interface whose name begins with "ipsec". Tunnels of other names do not
/// count. Any thread.
bool isVPNActive(platform::NetworkConfiguration& configuration);

} // namespace netvane::probes
