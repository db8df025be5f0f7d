#pragma once

#include "demo/stage.h"
#include "platform/network_configuration.h"
#include "platform/network_scanner.h"

namespace netvane::demo {

/// The Wi-Fi of the scene: one interface.
class ScriptedWiFi final : public platform::WiFiClient {
public:
    explicit ScriptedWiFi(std::shared_ptr<const Stage> stage);

    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override;

private:
    const std::shared_ptr<platform::WiFiInterface> m_interface;
};

/// Finds the networks of the script after a while.
class ScriptedScanner final : public platform::NetworkScanner {
public:
    explicit ScriptedScanner(std::shared_ptr<Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    void scan(QObject* owner, DeliverNetworks deliver) override;
    void readCurrentChannel(QObject* owner, DeliverChannel deliver) override;

private:
    const std::shared_ptr<Stage> m_stage;
};

class ScriptedPermission final : public platform::LocationManager {
public:
    explicit ScriptedPermission(const std::shared_ptr<Stage>& stage);

    platform::AuthorizationStatus authorizationStatus() const override;
    /// The scene goes on as it is.
    void requestAlwaysAuthorization() override { }

private:
    const std::shared_ptr<Stage> m_stage;
};

class ScriptedConfiguration final : public platform::NetworkConfiguration {
public:
    explicit ScriptedConfiguration(std::shared_ptr<const Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    std::optional<QString> defaultRouter() override { return m_stage->scene().router; }
    QStringList dnsServers() override { return m_stage->scene().dnsServers; }
    QStringList interfaceNames() override { return m_stage->scene().interfaces; }

private:
    const std::shared_ptr<const Stage> m_stage;
};

} // namespace netvane::demo
