#include "demo/scripted_radio.h"

#include "demo/script.h"

using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

constexpr std::chrono::milliseconds kScanTime = 2600ms;

class ScriptedInterface final : public platform::WiFiInterface {
public:
    explicit ScriptedInterface(std::shared_ptr<const Stage> stage)
        : m_stage(std::move(stage))
    {
    }

    bool powerOn() const override { return m_stage->scene().hasRadio; }
    std::optional<platform::LinkReading> readLink() override { return m_stage->link(); }

private:
    const std::shared_ptr<const Stage> m_stage;
};

} // namespace

ScriptedWiFi::ScriptedWiFi(std::shared_ptr<const Stage> stage)
    : m_interface(std::make_shared<ScriptedInterface>(std::move(stage)))
{
}

std::vector<std::shared_ptr<platform::WiFiInterface>> ScriptedWiFi::interfaces()
{
    return {m_interface};
}

void ScriptedScanner::scan(QObject* owner, DeliverNetworks deliver)
{
    m_stage->later(kScanTime, owner, [deliver = std::move(deliver)] { deliver(nearbyNetworks()); });
}

void ScriptedScanner::readCurrentChannel(QObject* owner, DeliverChannel deliver)
{
    m_stage->later(0ms, owner,
        [deliver = std::move(deliver), stage = m_stage.get()] { deliver(stage->link().channel); });
}

ScriptedPermission::ScriptedPermission(const std::shared_ptr<Stage>& stage)
    : m_stage(stage)
{
    connect(stage.get(), &Stage::sceneChanged, this,
        [this] { Q_EMIT didChangeAuthorization(authorizationStatus()); });
}

platform::AuthorizationStatus ScriptedPermission::authorizationStatus() const
{
    return m_stage->scene().permission;
}

} // namespace netvane::demo
