#include "verdict/verdict_service.h"

#include "base/background_work.h"
#include "base/log.h"
#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/history.h"
#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "verdict/answers.h"
#include "verdict/judge.h"
#include "verdict/track.h"
#include "wifi/wifi_service.h"

#include <netdb.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::verdict {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.verdict")

constexpr size_t kLinkReadings = 12; // a minute of the sampler
constexpr size_t kRadioEvents = 64;
constexpr auto kEventLife = 2min;
constexpr qsizetype kNameServers = 3; // what the system's resolver uses
constexpr int kRoundsBetweenQuestions = 10; // to the primary name server, while all is well
constexpr auto kWebInterval = 9s;

} // namespace

VerdictService::VerdictService(platform::Platform& platform, wifi::WiFiService& wifi,
    probes::DNSService& dns, probes::CaptivePortalService& portal)
    : m_platform(platform)
    , m_clock(*platform.clock)
    , m_dns(dns)
    , m_extraProbes(*platform.clock, *platform.connections, *platform.hopProbes, m_evidence,
          [this] { judgeNow(); })
{
    connect(&dns, &probes::DNSService::lookupEnded, this, &VerdictService::takeLookup);
    connect(&portal, &probes::CaptivePortalService::checked, this,
        [this](const platform::HttpAnswer& answer) {
            takeWeb(&Evidence::web, answer, probes::kCaptivePortalProbe.host());
        });
    connect(&wifi, &wifi::WiFiService::linkRead, this, &VerdictService::takeLink);
    if (platform.radioMonitor)
        connect(platform.radioMonitor.get(), &platform::RadioMonitor::happened, this,
            [this](const platform::RadioEvent& event) {
                probes::appendBounded(m_evidence.radioEvents, event, kRadioEvents);
                judgeNow();
            });
    connect(platform.routeMonitor.get(), &platform::RouteMonitor::routesChanged, this,
        &VerdictService::readNetwork);
    connect(platform.sleepMonitor.get(), &platform::SleepMonitor::didWake, this,
        &VerdictService::forget);
    readNetwork();
}

VerdictService::~VerdictService() = default;

void VerdictService::followProbes(probes::PingService* router, probes::PingService& internet)
{
    const auto follow = [this](probes::PingService& service, Outcomes Evidence::*outcomes) {
        connect(&service, &probes::PingService::probeEnded, this,
            [this, outcomes](const probes::ProbeOutcome& outcome) {
                auto lost = outcome.retransmissions;
                if (lost && outcome.latencyMs)
                    lost = lostInHandshake(m_evidence.*outcomes, *outcome.latencyMs, *lost);
                probes::appendBounded(m_evidence.*outcomes,
                    Outcome {.at = outcome.startedAt,
                        .milliseconds = outcome.latencyMs,
                        .retransmissions = lost},
                    kOutcomes);
                // Good news can wait for the round.
                if (!outcome.latencyMs || (m_evidence.*outcomes).size() == 1)
                    judgeNow();
            });
    };
    if (router && !std::exchange(m_router, router))
        follow(*router, &Evidence::router);
    if (!std::exchange(m_internet, &internet)) {
        follow(internet, &Evidence::internet);
        connect(&internet, &probes::PingService::probeBegan, this, &VerdictService::beginRound);
    }
}

void VerdictService::beginRound()
{
    m_extraProbes.nextRound();
    ++m_rounds;
    if (isSuspicious())
        readNetwork();
    askNameServers();
    checkWeb();
    judgeNow();
    learn();
}

/// Something is slow or lost, so that more has to be known than in a healthy network.
bool VerdictService::isSuspicious() const
{
    const auto internet = trackOf(m_evidence.internet);
    const double usual = m_evidence.usual.internet.value_or(100);
    const bool isSlow = !m_evidence.internet.empty()
        && m_evidence.internet.back().milliseconds.value_or(0) > std::max(2 * usual, usual + 60);
    return internet.unanswered > 0 || isSlow || verdict().severity != Severity::Fine;
}

void VerdictService::readNetwork()
{
    base::runInBackground(
        m_platform.queues->userInitiated, this,
        [configuration = m_platform.networkConfiguration.get()] {
            return configuration->readState();
        },
        [this](const std::optional<platform::NetworkState>& state) {
            if (state)
                takeNetwork(*state);
        },
        {m_clock, base::Delivery::Batched});
}

void VerdictService::takeNetwork(const platform::NetworkState& state)
{
    const bool hadRoute = !m_evidence.network || m_evidence.network->value.physicalRoute;
    measureLoad(state);
    m_evidence.network = {state, m_clock.monotonicNow()};
    m_evidence.routerAddress = state.physicalRoute ? state.physicalRoute->gateway : QString();
    const bool hasRoute = state.physicalRoute.has_value();
    if (hasRoute && (!hadRoute || (m_lastRoute && *m_lastRoute != *state.physicalRoute))) {
        const auto usual = m_evidence.usual;
        const bool isSame = m_lastRoute == state.physicalRoute;
        forget();
        if (isSame)
            m_evidence.usual = usual;
    }
    if (hasRoute)
        m_lastRoute = state.physicalRoute;
    if (hasRoute != hadRoute || !hasRoute)
        judgeNow();
}

/// What was measured is about another network, or about one that is beginning anew.
void VerdictService::forget()
{
    Evidence fresh;
    fresh.network = m_evidence.network;
    fresh.routerAddress = m_evidence.routerAddress;
    fresh.radioOn = m_evidence.radioOn;
    fresh.links = m_evidence.links;
    fresh.radioEvents = m_evidence.radioEvents;
    fresh.usesProxy = m_evidence.usesProxy;
    m_evidence = std::move(fresh);
    m_extraProbes.forget();
    m_lastCounters.reset();
    m_webAskedAt.reset();
    m_plainWebAskedAt.reset();
    m_namesDoubtedSince.reset();
}

void VerdictService::measureLoad(const platform::NetworkState& state)
{
    const auto& route = state.physicalRoute;
    const auto found = std::ranges::find_if(state.interfaces,
        [&](const auto& each) { return route && each.name == route->interfaceName; });
    if (found == state.interfaces.end())
        return;
    const auto now = m_clock.monotonicNow();
    if (m_lastCounters && m_lastCounters->value.name == found->name
        && found->receivedBytes >= m_lastCounters->value.receivedBytes
        && found->sentBytes >= m_lastCounters->value.sentBytes) {
        const double seconds = std::chrono::duration<double>(now - m_lastCounters->at).count();
        if (seconds < 1) // read twice for other reasons
            return;
        constexpr double kBitsPerMegabyte = 8 / 1e6;
        const auto rate = [&](std::uint64_t later, std::uint64_t earlier) {
            return double(later - earlier) * kBitsPerMegabyte / seconds;
        };
        constexpr double kLongest = 15; // what was long ago says nothing about now
        if (seconds <= kLongest)
            m_evidence.load
                = {{.receivedMbps = rate(found->receivedBytes, m_lastCounters->value.receivedBytes),
                       .sentMbps = rate(found->sentBytes, m_lastCounters->value.sentBytes)},
                    now};
    }
    m_lastCounters = {*found, now};
}

void VerdictService::takeLink(
    const std::optional<platform::LinkReading>& reading, const std::optional<bool>& radioOn)
{
    const bool hadLink = !m_evidence.links.empty() && m_evidence.links.back().value.ssid;
    m_evidence.radioOn = radioOn;
    if (reading)
        probes::appendBounded(m_evidence.links,
            Reading<platform::LinkReading> {*reading, m_clock.monotonicNow()}, kLinkReadings);
    else
        m_evidence.links.clear();
    if (hadLink != (reading && reading->ssid))
        judgeNow();
}

void VerdictService::takeLookup(TimePoint startedAt, const probes::TimedResolution& lookup)
{
    const auto& resolution = lookup.resolution;
    const std::chrono::duration<double, std::milli> time = lookup.duration;
    m_evidence.lookupNameUnknown
        = resolution.status == EAI_NONAME || resolution.status == EAI_NODATA;
    const bool isAnswer = resolution.status == 0 || m_evidence.lookupNameUnknown;
    probes::appendBounded(m_evidence.lookups,
        Outcome {
            .at = startedAt, .milliseconds = isAnswer ? std::optional(time.count()) : std::nullopt},
        kOutcomes);
    m_evidence.lookupAddresses.clear();
    for (const auto& address : resolution.addresses)
        m_evidence.lookupAddresses.append(QString::fromStdString(address));
    const bool isDoubted = m_evidence.lookupNameUnknown
        || (!m_evidence.lookupAddresses.isEmpty()
            && std::ranges::none_of(m_evidence.lookupAddresses, isPublic));
    if (!isDoubted)
        m_namesDoubtedSince.reset();
    else if (!std::exchange(m_namesDoubtedSince, m_namesDoubtedSince.value_or(startedAt)))
        checkWeb();
    if (!isAnswer || m_evidence.lookupNameUnknown)
        judgeNow();
}

void VerdictService::takeWeb(std::optional<Reading<WebAnswer>> Evidence::*place,
    const platform::HttpAnswer& answer, const QString& asked)
{
    const WebAnswer kind = webAnswer(answer, asked);
    m_evidence.*place = {kind, m_clock.monotonicNow()};
    m_evidence.usesProxy = answer.usedProxy;
    if (kind == WebAnswer::Redirect)
        m_evidence.portalHost = answer.finalUrl.host();
    if (kind != WebAnswer::Expected) {
        checkWeb(); // the other page, too
        judgeNow();
    }
}

/// The primary one now and then, all of them while look-ups fail, hang or are slow.
void VerdictService::askNameServers()
{
    m_evidence.lookupPendingSince = m_dns.pendingSince();
    const auto lookups = trackOf(m_evidence.lookups);
    const auto& pending = m_evidence.lookupPendingSince;
    const bool hasTrouble = lookups.unanswered > 0 || m_evidence.lookupNameUnknown
        || (pending && m_clock.monotonicNow() - *pending > 500ms)
        || segmentOf(verdict().cause) == Segment::Dns
        || lookups.medianMs.value_or(0)
            > 200 + 2 * trackOf(m_evidence.internet).medianMs.value_or(0)
        || std::ranges::any_of(m_evidence.nameServers, [](const auto& server) {
               return !server.answers.empty()
                   && server.answers.back().value.kind != platform::NameAnswer::Kind::Addresses;
           });
    if (!m_platform.nameServers || (!hasTrouble && m_rounds % kRoundsBetweenQuestions != 0))
        return;
    const QStringList addresses
        = m_platform.networkConfiguration->dnsServers().mid(0, kNameServers);
    auto& servers = m_evidence.nameServers;
    const auto known = [&](const QString& address) {
        return std::ranges::find(servers, address, &NameServer::address);
    };
    std::erase_if(servers, [&](const auto& server) { return !addresses.contains(server.address); });
    for (const auto& address : addresses) {
        if (known(address) == servers.end())
            servers.push_back({address, {}});
        if (!hasTrouble && address != addresses.front())
            continue;
        m_platform.nameServers->ask(address, m_dns.testHost(), this,
            [this, known, address, at = m_clock.monotonicNow()](
                const platform::NameAnswer& answer) {
                const auto server = known(address);
                if (server == m_evidence.nameServers.end())
                    return;
                probes::appendBounded(
                    server->answers, Reading<platform::NameAnswer> {answer, at}, kOutcomes);
                if (answer.kind != platform::NameAnswer::Kind::Addresses)
                    judgeNow();
            });
    }
}

/// A portal can answer a page without TLS. It is asked when the one with TLS did not come, and when
/// the way to the internet changed under the same route, as it does when a portal steps in. The one
/// with TLS tells whether names that seem false do any harm, and whether a silent page is alone.
void VerdictService::checkWeb()
{
    const auto internet = trackOf(m_evidence.internet);
    const auto& web = m_evidence.web;
    const bool isWebBad = web && web->value != WebAnswer::Expected;
    const auto secondHop = trackOf(m_evidence.secondHop);
    const bool isHopGone = secondHop.hasAnswered() && secondHop.unanswered >= 1;
    const double usual = m_evidence.usual.internet.value_or(0);
    const bool isCloser = internet.medianMs && *m_evidence.internet.back().milliseconds < usual / 2;
    const bool wantsPlain = internet.isAlive() && (isWebBad || isHopGone || isCloser);
    const auto& plainWeb = m_evidence.plainWeb;
    const bool isPlainBad = plainWeb && plainWeb->value != WebAnswer::Expected;
    const auto isNewsSince = [&](TimePoint at) { return !web || isWebBad || web->at < at; };
    const bool wantsTls = (m_namesDoubtedSince && isNewsSince(*m_namesDoubtedSince))
        || (isPlainBad && isNewsSince(plainWeb->at));
    if (wantsPlain)
        ask(probes::kPlainPortalProbe, &Evidence::plainWeb, m_plainWebAskedAt);
    if (wantsTls)
        ask(probes::kCaptivePortalProbe, &Evidence::web, m_webAskedAt);
}

void VerdictService::ask(const QUrl& page, std::optional<Reading<WebAnswer>> Evidence::*place,
    std::optional<TimePoint>& askedAt)
{
    const auto now = m_clock.monotonicNow();
    if (askedAt && now - *askedAt < kWebInterval)
        return;
    askedAt = now;
    m_platform.httpClient->send(
        {.url = page}, this, [this, place, host = page.host()](const platform::HttpAnswer& answer) {
            takeWeb(place, answer, host);
        });
}

/// Only while all is well, and slowly: a fault must not become what is usual.
void VerdictService::learn()
{
    if (verdict().cause != Cause::Healthy)
        return;
    const auto learnFrom = [](std::optional<double>& usual, const Outcomes& outcomes) {
        constexpr size_t kFirst = 3;
        constexpr double kQuick = 0.1;
        constexpr double kSlow = 0.02;
        const auto median = trackOf(outcomes).medianMs;
        if (!median || (!usual && outcomes.size() < kFirst))
            return;
        const double before = usual.value_or(*median);
        usual = before + (*median - before) * (*median > 1.3 * before ? kSlow : kQuick);
    };
    learnFrom(m_evidence.usual.internet,
        m_evidence.internet.empty() || !m_evidence.internet.back().milliseconds
            ? m_evidence.internet6
            : m_evidence.internet);
    learnFrom(m_evidence.usual.router, m_evidence.router);
    learnFrom(m_evidence.usual.lookup, m_evidence.lookups);
}

void VerdictService::judgeNow()
{
    m_evidence.now = m_clock.monotonicNow();
    std::erase_if(m_evidence.radioEvents,
        [this](const auto& event) { return m_evidence.now - event.at > kEventLife; });
    const Verdict before = verdict();
    const Verdict& shown = m_keeper.take(judge(m_evidence), m_evidence.now, m_clock.now());
    const bool isNewCause = shown.cause != before.cause;
    if (isNewCause)
        base::log(logCategory(),
            u"Verdict: %1 (%2), %3"_s.arg(
                identifier(shown.cause), identifier(segmentOf(shown.cause)), shown.sentence));
    if (isNewCause || shown.severity != before.severity || shown.sentence != before.sentence)
        Q_EMIT verdictChanged();
    Q_EMIT evidenceChanged();
}

} // namespace netvane::verdict
