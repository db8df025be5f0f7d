#include "verdict/extra_probes.h"

#include "probes/history.h"
#include "probes/probe_targets.h"
#include "verdict/facts.h"

#include <algorithm>
#include <tuple>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::verdict {
namespace {

constexpr quint16 kUnusedPort = 33434; // nobody listens; the datagrams do not get that far
constexpr quint16 kHttpPort = 80;
constexpr quint16 kHttpsPort = 443;
constexpr int kRoundsBetweenFullPackets = 10;
constexpr auto kHalfRound = 1500ms;
constexpr auto kPatience = 2500ms; // less than a round, so that its end counts

} // namespace

ExtraProbes::ExtraProbes(base::Clock& clock, platform::ConnectionFactory& connections,
    platform::HopProbeFactory& hops, Evidence& evidence, std::function<void()> note)
    : m_clock(clock)
    , m_connections(connections)
    , m_hops(hops)
    , m_evidence(evidence)
    , m_note(std::move(note))
{
}

void ExtraProbes::nextRound()
{
    closeOldQuestions();
    m_between.reset();
    ++m_round;
    const auto& network = m_evidence.network;
    if (network && !network->value.route4 && !network->value.route6)
        return;
    askHops();
    const auto hasIPv6 = [](const auto& each) { return each.hasIPv6; };
    if (network && network->value.route6 && std::ranges::any_of(network->value.interfaces, hasIPv6))
        ask(&Evidence::internet6, [this](auto handler) {
            return m_connections.connectTcp(
                probes::kInternetTarget6, kHttpPort, std::move(handler));
        });
    if (!m_evidence.internet.empty() && !m_evidence.internet.back().milliseconds)
        askOthers();
    if (wantsFullPacket())
        sendFullPacket();
    if (Facts(m_evidence).farLoss.since)
        m_between = m_clock.after(kHalfRound, [this] { askBetween(); });
}

void ExtraProbes::forget()
{
    m_questions.clear();
    m_between.reset();
    m_fullPacket.reset();
    m_lostFullPackets = 0;
    m_fullPacketWait = 1;
    m_pathKey.clear();
}

void ExtraProbes::closeOldQuestions()
{
    const auto now = m_clock.monotonicNow();
    std::erase_if(m_questions, [&](const auto& question) {
        const bool isOld = now - question->askedAt >= kPatience;
        if (isOld && !question->isAnswered)
            add(question->outcomes, {.at = question->askedAt, .milliseconds = {}});
        return isOld || question->isAnswered;
    });
}

/// In the order in which the questions were asked: an answer may come before an older loss is
/// known.
void ExtraProbes::add(Outcomes Evidence::*outcomes, const Outcome& outcome)
{
    Outcomes& all = m_evidence.*outcomes;
    probes::appendBounded(all, outcome, kOutcomes);
    const auto place
        = std::ranges::upper_bound(all.begin(), all.end() - 1, outcome.at, {}, &Outcome::at);
    std::rotate(place, all.end() - 1, all.end());
}

void ExtraProbes::ask(Outcomes Evidence::*outcomes, const Start& start)
{
    auto question = std::make_shared<Question>(Question {.outcomes = outcomes,
        .askedAt = m_clock.monotonicNow(),
        .isDatagram = outcomes == &Evidence::firstHop || outcomes == &Evidence::secondHop});
    question->connection
        = start([this, weak = std::weak_ptr(question)](const platform::ConnectionEvent& event) {
              const auto held = weak.lock();
              if (!held || held->isAnswered || event.state != platform::ConnectionState::Ready)
                  return; // a failure is a loss at the end of the round
              held->isAnswered = true;
              const std::chrono::duration<double, std::milli> time
                  = event.at - event.askedAt.value_or(held->askedAt);
              auto lost = held->isDatagram ? 0 : event.retransmissions;
              if (lost)
                  lost = lostInHandshake(m_evidence.*held->outcomes, time.count(), *lost);
              add(held->outcomes,
                  {.at = held->askedAt, .milliseconds = time.count(), .retransmissions = lost});
              held->connection->cancel();
              if ((m_evidence.*held->outcomes).size() == 1)
                  m_note();
          });
    m_questions.push_back(question);
    question->connection->start();
}

/// Through a tunnel they would show the way of the tunnel.
void ExtraProbes::askHops()
{
    QString target = probes::kInternetTarget;
    QString interfaceName;
    if (m_evidence.network) {
        const auto& state = m_evidence.network->value;
        if (!state.route4)
            target = probes::kInternetTarget6;
        const auto& route = state.route4 ? state.route4 : state.route6;
        if (route->isThroughTunnel && state.physicalRoute)
            interfaceName = state.physicalRoute->interfaceName;
    }
    if (const QString key = target + u'%' + interfaceName; key != m_pathKey) {
        m_pathKey = key;
        m_firstPath = m_hops.watchedPathTo(target, interfaceName);
        m_secondPath = m_hops.watchedPathTo(target, interfaceName);
    }
    if (m_round % 2 == 0 || !sparesRouter())
        askFirstHop();
    askSecondHop();
}

void ExtraProbes::askFirstHop()
{
    ask(&Evidence::firstHop,
        [this](auto handler) { return m_firstPath->probe(kUnusedPort, 1, std::move(handler)); });
}

void ExtraProbes::askSecondHop()
{
    ask(&Evidence::secondHop,
        [this](auto handler) { return m_secondPath->probe(kUnusedPort, 2, std::move(handler)); });
}

void ExtraProbes::askBetween()
{
    ask(&Evidence::between, [this](auto handler) {
        return m_connections.connectTcp(
            isOnlyIPv6() ? probes::kInternetTarget6 : probes::kInternetTarget, kHttpPort,
            std::move(handler));
    });
    askSecondHop();
    // Where packets are lost is as important as that they are.
    if (!sparesRouter())
        askFirstHop();
}

/// Many routers send one ICMP message a second to each host (icmp(7), icmp_ratelimit). If the
/// router is asked by datagrams as well, two programs would ask for more than that.
bool ExtraProbes::sparesRouter() const
{
    const auto answered = std::find_if(m_evidence.router.rbegin(), m_evidence.router.rend(),
        [](const Outcome& outcome) { return outcome.milliseconds.has_value(); });
    return answered != m_evidence.router.rend() && !answered->retransmissions;
}

bool ExtraProbes::isOnlyIPv6() const
{
    return m_evidence.network && !m_evidence.network->value.route4;
}

/// Two hosts by turns: one alone may be down, too.
void ExtraProbes::askOthers()
{
    const auto& host = probes::kOtherTargets.at(size_t(m_round % 2));
    ask(&Evidence::otherHosts, [&](auto handler) {
        return m_connections.connectTcp(
            isOnlyIPv6() ? probes::kOtherTarget6 : QString(host), kHttpsPort, std::move(handler));
    });
}

bool ExtraProbes::wantsFullPacket() const
{
    const bool isReached
        = !m_evidence.internet.empty() && m_evidence.internet.back().milliseconds.has_value();
    const auto& [web, plainWeb] = std::tie(m_evidence.web, m_evidence.plainWeb);
    const auto& newer = plainWeb && (!web || web->at < plainWeb->at) ? plainWeb : web;
    const bool isWebSilent
        = (web && web->value == WebAnswer::Silent) || (newer && newer->value == WebAnswer::Silent);
    return isReached && !m_fullPacket
        && (m_round >= m_fullPacketWait || m_lostFullPackets > 0 || isWebSilent);
}

void ExtraProbes::sendFullPacket()
{
    m_fullPacketWait = m_round + kRoundsBetweenFullPackets;
    m_fullPacket = m_connections.sendFullPacket(
        isOnlyIPv6() ? probes::kInternetTarget6 : probes::kInternetTarget, kHttpPort,
        [this, at = m_clock.monotonicNow()](const platform::ConnectionEvent& event) {
            using State = platform::ConnectionState;
            if (event.state == State::Ready)
                m_lostFullPackets = 0;
            else if (event.state == State::Failed)
                ++m_lostFullPackets;
            // One alone may have been lost by chance.
            if (event.state == State::Ready || m_lostFullPackets >= 2) {
                m_evidence.fullSizePassed = Reading<bool> {event.state == State::Ready, at};
                if (m_lostFullPackets >= 2)
                    m_note();
            }
            m_clock.soon(m_owner.get(), [this] { m_fullPacket.reset(); });
        });
    m_fullPacket->start();
}

} // namespace netvane::verdict
