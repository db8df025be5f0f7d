#pragma once

#include "demo/stage.h"
#include "platform/network_scanner.h"

#include <atomic>

namespace netvane::soak {

/// What happens to the adapter whatever the scene is. Any thread.
struct AdapterFate {
    std::atomic<bool> isUnplugged = false;
    std::atomic<bool> isQuiet = false; ///< few networks, and a driver that has time
    std::atomic<int> journey = 0; ///< not zero: a network that nobody has met before
};

/// The radio of the scene with an adapter that can be pulled out and that travels.
class SoakRadio final : public platform::WiFiClient {
public:
    SoakRadio(
        std::shared_ptr<platform::WiFiClient> scripted, std::shared_ptr<const AdapterFate> fate);

    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override;

private:
    const std::shared_ptr<platform::WiFiClient> m_scripted;
    const std::shared_ptr<const AdapterFate> m_fate;
};

/// Finds hundreds of networks, others each time, or none because the driver has no time.
class CrowdedScanner final : public platform::NetworkScanner {
public:
    CrowdedScanner(std::shared_ptr<demo::Stage> stage, std::shared_ptr<const AdapterFate> fate)
        : m_stage(std::move(stage))
        , m_fate(std::move(fate))
    {
    }

    static constexpr int kMostNetworks = 1000;

    void scan(QObject* owner, DeliverNetworks deliver) override;
    void readCurrentChannel(QObject* owner, DeliverChannel deliver) override;

private:
    std::vector<platform::NearbyNetwork> networks() const;

    const std::shared_ptr<demo::Stage> m_stage;
    const std::shared_ptr<const AdapterFate> m_fate;
    int m_scans = 0;
};

} // namespace netvane::soak
