#include "demo/stage.h"

#include "base/log.h"
#include "demo/air.h"
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
    parts.network.state = networkState();
    parts.interface->isOn = scene().hasRadio;
    parts.scanner.currentChannel = scene().link.channel;
    parts.resolver->status = scene().lookupTime ? 0 : EAI_AGAIN;
    *m_lookupTime = int(scene().lookupTime.value_or(0us).count());
    parts.location.change(scene().permission);
    Q_EMIT sceneChanged();
}

/// With a cable plugged in, that is the way out.
platform::NetworkState Stage::networkState() const
{
    using platform::NeighbourState;
    const bool hasCable = scene().interfaces.contains(u"eth0"_s);
    const bool hasLink = scene().hasRadio;
    platform::NetworkState state {
        .physicalRoute = platform::DefaultRoute {scene().router, hasCable ? u"eth0"_s : u"wlan0"_s},
        .router = scene().routerTimes.empty() ? NeighbourState::Failed : NeighbourState::Reachable};
    state.route4 = state.physicalRoute;
    state.interfaces.push_back({.name = u"wlan0"_s,
        .isUp = hasLink,
        .hasCarrier = hasLink,
        .isWireless = true,
        .hasIPv4 = hasLink});
    if (hasCable)
        state.interfaces.push_back(
            {.name = u"eth0"_s, .isUp = true, .hasCarrier = true, .hasIPv4 = true});
    return state;
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

std::chrono::steady_clock::duration Stage::timeInScene() const
{
    return parts.clock.monotonicNow() - m_begunAt.load();
}

size_t Stage::entry(std::chrono::milliseconds interval, size_t count) const
{
    return size_t(timeInScene() / interval) % count;
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
        constexpr std::uint64_t kPackets = 100; // in one interval
        const auto intervals = std::uint64_t(timeInScene() / kReadingInterval);
        reading.counters.failed = intervals * std::uint64_t(now.failedPercent);
        reading.counters.sentPackets = intervals * kPackets - *reading.counters.failed;
    }
    return reading;
}

void Stage::writeScripts()
{
    parts.interface->script = [this] { return link(); };
    parts.air.script = [this] { return airReading(scene(), link(), parts.clock.monotonicNow()); };
    parts.scanner.waiting.whenAsked = [this] {
        m_scanEnd
            = parts.clock.after(kScanTime, [this] { parts.scanner.finish(nearbyNetworks()); });
    };
    parts.connections.script = [this](const auto& made) { return connectionAnswer(made); };
    parts.http.script = [this](const auto& request) {
        return request.keepsBody ? HttpClient::End {kPageTime, page(request.url)}
                                 : transferEnd(request);
    };
    parts.nameServers.script = [this](const QString&, const QString&) -> platform::NameAnswer {
        const auto& time = scene().lookupTime;
        if (!time)
            return {};
        return {.kind = platform::NameAnswer::Kind::Addresses,
            .addresses = {u"198.51.100.17"_s},
            .milliseconds = double(time->count()) / 1000};
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
    if (made.hopLimit > 0)
        return hopAnswer(made);
    return timed(
        made.host == scene().router ? scene().routerTimes : scene().internetTimes, made.host);
}

/// The further routers are there whenever the internet is.
std::optional<Stage::Connections::Answer> Stage::hopAnswer(const Connections::Made& made) const
{
    const auto way = hops();
    const auto before = size_t(made.hopLimit) - 1;
    const Hop hop = before < way.size() ? way[before] : Hop {made.host, kTargetTime};
    if (before < 2)
        return timed(before == 0 ? scene().routerTimes : scene().providerTimes,
            before == 0 ? scene().router : hop.address);
    if (hop.address.isEmpty() || scene().internetTimes.empty())
        return {};
    return {{microseconds(hop.milliseconds) + made.port % 7 * 90us, hop.address}};
}

std::optional<Stage::Connections::Answer> Stage::timed(
    const std::vector<std::optional<double>>& times, const QString& by) const
{
    const auto time = times.empty() ? std::nullopt : times[entry(kProbeInterval, times.size())];
    if (!time)
        return {};
    const double load = parts.http.transfers > 0 ? scene().timeUnderLoad : 0;
    return {{microseconds(*time + load), by}};
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

/// The probe page, the portal's page, or none where no name is resolved.
platform::HttpAnswer Stage::page(const QUrl& url) const
{
    const auto& portal = scene().portal;
    if (!scene().lookupTime)
        return {.finalUrl = url,
            .errorText = u"Could not resolve the name of the host"_s,
            .failure = platform::HttpFailure::NotResolved};
    return {.status = 200,
        .body = portal ? "<h1>Welcome</h1>"_ba : "<h1>Success</h1>"_ba,
        .finalUrl = portal.value_or(url)};
}

} // namespace netvane::demo
