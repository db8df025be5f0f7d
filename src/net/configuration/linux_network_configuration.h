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
    /// A folder for each interface; that of a wireless one has an entry for its radio.
    QString devices = QStringLiteral("/sys/class/net");
};

/// Addresses that are taken for the internet: the kernel is asked for the route to them. Nothing is
/// sent. Without one, its family has no route.
struct InternetAddresses {
    QString ipv4;
    QString ipv6;
};

/// Links, addresses, routes and neighbours as the kernel knows them (rtnetlink(7)), the resolver's
/// files and the kernel's list of interfaces.
class LinuxNetworkConfiguration : public platform::NetworkConfiguration {
public:
    explicit LinuxNetworkConfiguration(NetworkFiles files = {}, InternetAddresses internet = {})
        : m_files(std::move(files))
        , m_internet(std::move(internet))
    {
    }

    std::optional<QString> defaultRouter() override;
    std::optional<platform::NetworkState> readState() override;
    QStringList dnsServers() override;
    QStringList interfaceNames() override;

private:
    const NetworkFiles m_files;
    const InternetAddresses m_internet;
};

} // namespace netvane::net
