#pragma once

#include "platform/network_configuration.h"

namespace netvane::net {

/// The files with the configuration of the network.
struct NetworkFiles {
    QString resolvConf = QStringLiteral("/etc/resolv.conf");
    /// systemd-resolved writes here the servers that its stub at 127.0.0.53 asks.
    QString resolvedUpstreams = QStringLiteral("/run/systemd/resolve/resolv.conf");
    /// The interfaces of this process's network namespace. Unlike the netlink dump behind
    /// getifaddrs it never waits for the lock that a driver may hold.
    QString interfaces = QStringLiteral("/proc/net/dev");
};

/// Links, addresses, routes and neighbours as the kernel knows them (rtnetlink), the resolver's
/// files and the kernel's list of interfaces.
class LinuxNetworkConfiguration : public platform::NetworkConfiguration {
public:
    explicit LinuxNetworkConfiguration(NetworkFiles files = {})
        : m_files(std::move(files))
    {
    }

    std::optional<QString> defaultRouter() override;
    std::optional<platform::NetworkState> readState() override;
    QStringList dnsServers() override;
    QStringList interfaceNames() override;

private:
    const NetworkFiles m_files;
};

} // namespace netvane::net
