#include "demo/stage.h"

#include "base/log.h"
#include "diagnostics/speed_test_json.h"
#include "diagnostics/speed_test_service.h"
#include "insights/onboarding_service.h"
#include "probes/probe_targets.h"

#include <QUrlQuery>

#include <netdb.h>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.demo")

// How often the services ask.
constexpr std::chrono::milliseconds kReadingInterval = 5s;
constexpr std::chrono::milliseconds kProbeInterval = 3s;
// How long an answer takes.
constexpr std::chrono::milliseconds kPageTime = 180ms;
constexpr std::chrono::milliseconds kScanTime = 2600ms;

std::chrono::microseconds microseconds(double milliseconds)
{
    return std::chrono::microseconds(std::llround(milliseconds * 1000));
}

/// Look-ups differ a little from one to the next.
std::chrono::microseconds varied(int microseconds, int number)
{
    constexpr std::array kPercent {100, 132, 88, 117, 94, 148, 103, 82, 109, 100};
    return std::chrono::microseconds(
        microseconds / 100 * kPercent[size_t(number) % kPercent.size()]);
}

std::optional<simulated::Connections::Answer> hopAnswer(const simulated::Connections::Made& made)
{
    const auto way = hops();
    const bool isTarget = size_t(made.hopLimit) > way.size();
    const Hop hop = isTarget ? Hop {made.host, kTargetTime} : way[size_t(made.hopLimit) - 1];
    if (hop.address.isEmpty())
        return {};
    return {{microseconds(hop.milliseconds) + made.port % 7 * 90us, hop.address}};
}

/// What the kernel would say.
platform::NetworkState networkOf(const Scene& scene)
{
    platform::NetworkState state;
    const bool isLinked = scene.hasRadio && !scene.signalDbm.empty();
    for (const QString& name : scene.interfaces) {
        const bool isWireless = name == u"wlan0"_s;
        if (!isWireless && name != u"eth0"_s)
            continue;
        const bool isConnected = !isWireless || isLinked;
        state.interfaces.push_back({.name = name,
            .isUp = !isWireless || scene.hasRadio,
            .hasCarrier = isConnected,
            .isWireless = isWireless,
            .hasIPv4 = isConnected});
        if (isConnected)
            state.physicalRoute = {{.gateway = scene.router, .interfaceName = name}};
    }
    state.route4 = state.physicalRoute;
    state.router = scene.routerTimes.empty() ? platform::NeighbourState::Failed
                                             : platform::NeighbourState::Reachable;
    return state;
}

} // namespace

Stage::Stage(std::unique_ptr<base::Clock> clock, StageOptions options)
    : parts(std::move(clock))
    , m_scenes(std::move(options.scenes))
{
    writeScripts();
    writeScriptsOfDesktop();
    parts.appearance.setColorScheme(options.colorScheme);
    parts.host.setPresent(options.hasStatusArea);
    if (!options.held || !hold(*options.held))
        begin(0);
    if (!options.held)
        goOn();
    parts.defaults.setBoolean(insights::OnboardingService::onboardingKey, scene().isIntroduced);
    const auto tests = diagnostics::encodeSpeedTests(earlierSpeedTests(parts.clock.now()));
    if (tests)
        parts.defaults.setText(diagnostics::SpeedTestService::historyKey, tests.value());
}

void Stage::begin(size_t index)
{
    m_index = index;
    m_begunAt = parts.clock.monotonicNow();
    base::log(logCategory(), u"Demonstration: "_s + scene().title);
    parts.network.router = scene().router;
    parts.network.servers = scene().dnsServers;
    parts.network.interfaces = scene().interfaces;
    parts.network.state = networkOf(scene());
    parts.interface->isOn = scene().hasRadio;
    parts.scanner.currentChannel = scene().link.channel;
    parts.resolver->status = scene().lookupTime ? 0 : EAI_AGAIN;
    *m_lookupTime = int(scene().lookupTime.value_or(0us).count());
    parts.location.change(scene().permission);
    Q_EMIT sceneChanged();
}

/// Schedules the next scene that has a duration.
void Stage::goOn()
{
    m_change = parts.clock.after(scene().duration, [this] {
        size_t next = m_index;
        do
            next = (next + 1) % m_scenes.size();
        while (m_scenes[next].duration == 0s);
        begin(next);
        goOn();
    });
}

bool Stage::hold(const QString& name)
{
    const auto found = std::ranges::find(m_scenes, name, &Scene::name);
    if (found == m_scenes.end())
        return false;
    m_change.reset();
    begin(size_t(found - m_scenes.begin()));
    return true;
}

size_t Stage::entry(std::chrono::milliseconds interval, size_t count) const
{
    return size_t((parts.clock.monotonicNow() - m_begunAt.load()) / interval) % count;
}

platform::LinkReading Stage::link() const
{
    const Scene& now = scene();
    platform::LinkReading reading = now.link;
    const auto tell = [this](auto& value, const auto& list) {
        if (!list.empty())
            value = list[entry(kReadingInterval, list.size())];
    };
    if (now.hasRadio) {
        tell(reading.signalDbm, now.signalDbm);
        tell(reading.noiseDbm, now.noiseDbm);
        tell(reading.transmitRateMbps, now.rateMbps);
        constexpr double kPacketsASecond = 20;
        const double sent = kPacketsASecond
            * std::chrono::duration<double>(parts.clock.monotonicNow() - m_begunAt.load()).count();
        reading.counters.sentPackets = std::uint64_t(sent);
        reading.counters.failed = std::uint64_t(sent * now.failedPercent / 100);
    }
    return reading;
}

void Stage::writeScripts()
{
    parts.interface->script = [this] { return link(); };
    parts.scanner.waiting.whenAsked = [this] {
        m_scanEnd
            = parts.clock.after(kScanTime, [this] { parts.scanner.finish(nearbyNetworks()); });
    };
    parts.connections.script = [this](const auto& made) { return connectionAnswer(made); };
    parts.http.script = [this](const auto& request) {
        return request.keepsBody ? HttpClient::End {kPageTime, page(request.url)}
                                 : transferEnd(request);
    };
    parts.nameServers.script = [this](const QString&, const QString&) {
        const auto time = scene().lookupTime;
        return time ? platform::NameAnswer {.kind = platform::NameAnswer::Kind::Addresses,
                   .addresses = {u"198.51.100.7"_s},
                   .milliseconds = double(time->count()) / 1000}
                    : platform::NameAnswer {};
    };
    parts.resolver->errorText = "Temporary failure in name resolution";
    parts.resolver->takeTime
        = [time = m_lookupTime](int number) { std::this_thread::sleep_for(varied(*time, number)); };
}

/// Notifications and addresses go to the log.
void Stage::writeScriptsOfDesktop()
{
    auto& center = parts.notifications;
    center.settingsAsked.always = {platform::NotificationAuthorization::Authorized};
    center.permissionsAsked.always = {true, {}};
    center.addsPending.always.emplace();
    center.addsPending.whenAsked = [&center] {
        const auto& request = center.added.back();
        base::log(logCategory(),
            u"Demonstration: notification \"%1\": %2"_s.arg(request.title, request.body));
    };
    parts.opener.whenOpened = [](const QUrl& url) {
        base::log(logCategory(), u"Demonstration: would open "_s + url.toDisplayString());
    };
}

std::optional<Stage::Connections::Answer> Stage::connectionAnswer(
    const Connections::Made& made) const
{
    if (made.hopLimit > 0 && !made.isWatched)
        return hopAnswer(made);
    const bool isRouter = made.host == scene().router || made.hopLimit == 1;
    const auto& times = isRouter ? scene().routerTimes : scene().internetTimes;
    const auto time = times.empty() ? std::nullopt : times[entry(kProbeInterval, times.size())];
    if (!time)
        return {};
    const double load = parts.http.transfers > 0 ? scene().timeUnderLoad : 0;
    constexpr double kProvidersShare = 0.6; // of the way to the target
    const double share = made.hopLimit == 2 ? kProvidersShare : 1;
    return {{microseconds(share * *time + load), made.host}};
}

Stage::HttpClient::End Stage::transferEnd(const platform::HttpRequest& request) const
{
    const qint64 asked = QUrlQuery(request.url).queryItemValue(u"bytes"_s).toLongLong();
    const auto bits = double(request.uploadSize.value_or(asked)) * 8;
    const double bitsPerMicrosecond
        = request.uploadSize ? scene().uploadMbps : scene().downloadMbps;
    return {std::chrono::microseconds(std::llround(bits / bitsPerMicrosecond)),
        {.receivedBytes = request.uploadSize ? 0 : asked}};
}

/// The probe page, or the portal's page.
platform::HttpAnswer Stage::page(const QUrl& url) const
{
    if (scene().internetTimes.empty() && !scene().portal)
        return {.finalUrl = url,
            .errorText = u"No route to host"_s,
            .failure = platform::HttpFailure::NotConnected};
    const auto& portal = scene().portal;
    return {.status = 200,
        .body = portal ? "<h1>Welcome</h1>"_ba : "<h1>Success</h1>"_ba,
        .finalUrl = portal.value_or(url)};
}

} // namespace netvane::demo
