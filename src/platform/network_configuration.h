#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace netvane::platform {

/// The network configuration of this machine, read again by each call. Any thread.
class NetworkConfiguration {
public:
    virtual ~NetworkConfiguration() = default;

    /// The IPv4 address of the default router; absent when there is none or it cannot be read.
    /// Asks the kernel, which may take up to some seconds to answer: not on the main thread.
    virtual std::optional<QString> defaultRouter() = 0;
    /// The configured addresses of the DNS servers, the primary one first; empty if there is none.
    /// Reads two small files at most.
    virtual QStringList dnsServers() = 0;
    /// The names of all network interfaces, up or down. Reads one small file and never waits for a
    /// driver.
    virtual QStringList interfaceNames() = 0;
};

} // namespace netvane::platform
