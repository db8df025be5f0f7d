#include "demo/scripted_platform.h"

#include "demo/script.h"
#include "demo/scripted_radio.h"
#include "diagnostics/speed_test_json.h"
#include "diagnostics/speed_test_service.h"
#include "insights/onboarding_service.h"

namespace netvane::demo {
namespace {

std::unique_ptr<platform::UserDefaults> defaultsOf(const Stage& stage)
{
    auto defaults = std::make_unique<MemoryDefaults>();
    defaults->setBoolean(insights::OnboardingService::onboardingKey, stage.scene().isIntroduced);
    if (const auto tests = diagnostics::encodeSpeedTests(earlierSpeedTests(stage.clock().now())))
        defaults->setText(diagnostics::SpeedTestService::historyKey, tests.value());
    return defaults;
}

std::shared_ptr<Lookups> lookupsOf(const std::shared_ptr<Stage>& stage)
{
    auto lookups = std::make_shared<Lookups>();
    const auto follow = [lookups, stage = stage.get()] {
        const auto& time = stage->scene().lookupTime;
        lookups->microseconds = time ? int(time->count()) : -1;
    };
    QObject::connect(stage.get(), &Stage::sceneChanged, stage.get(), follow);
    follow();
    return lookups;
}

} // namespace

ScriptedPlatform makeScriptedPlatform(std::unique_ptr<base::Clock> clock, Wishes wishes)
{
    const auto stage = std::make_shared<Stage>(*clock, std::move(wishes.scenes), wishes.held);
    const auto lookups = lookupsOf(stage);
    auto appearance = std::make_unique<ChosenAppearance>(wishes.colorScheme);
    ScriptedPlatform scripted {
        .platform = {}, .stage = stage, .lookups = lookups, .appearance = appearance.get()};
    auto& platform = scripted.platform;
    platform.clock = std::move(clock);
    platform.queues = std::make_unique<base::WorkQueues>();
    platform.networkConfiguration = std::make_unique<ScriptedConfiguration>(stage);
    platform.wifiClient = std::make_shared<ScriptedWiFi>(stage);
    platform.networkScanner = std::make_unique<ScriptedScanner>(stage);
    platform.locationManager = std::make_unique<ScriptedPermission>(stage);
    platform.appearance = std::move(appearance);
    platform.statusNotifierHost = std::make_unique<KnownStatusArea>(wishes.hasStatusArea);
    platform.instanceClaim = std::make_unique<GrantedClaim>();
    platform.sleepMonitor = std::make_unique<platform::SleepMonitor>();
    platform.urlOpener = std::make_unique<LoggedUrlOpener>();
    platform.httpClient = std::make_unique<ScriptedHttpClient>(stage);
    platform.httpTransfers = std::make_unique<ScriptedTransfers>(stage);
    const auto connections = std::make_shared<ScriptedConnections>(stage);
    platform.connections = connections;
    platform.hopProbes = connections;
    platform.resolver = std::make_shared<ScriptedResolver>(lookups);
    platform.userDefaults = defaultsOf(*stage);
    platform.userNotifications = std::make_unique<LoggedNotifications>(stage);
    return scripted;
}

} // namespace netvane::demo
