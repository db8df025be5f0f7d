#pragma once

#include "platform/network_configuration.h"

namespace netvane::test {

/// Answers what it is told to.
class FakeNetworkConfiguration : public platform::NetworkConfiguration {
public:
    std::optional<QString> router;
    QStringList servers;
    QStringList interfaces;

    std::optional<QString> defaultRouter() override { return router; }
    QStringList dnsServers() override { return servers; }
    QStringList interfaceNames() override { return interfaces; }
};

} // namespace netvane::test
