#include "verdict/extra_probes.h"

#include "probes/history.h"
#include "probes/probe_targets.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

constexpr quint16 kUnusedPort = 33434; // nobody listens; the datagrams do not get that far
constexpr quint16 kHttpPort = 80;
constexpr quint16 kHttpsPort = 443;
constexpr int kRoundsBetweenFullPackets = 10;

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
    closeRound();
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
}

void ExtraProbes::forget()
{
    m_questions.clear();
    m_fullPacket.reset();
    m_lostFullPackets = 0;
    m_fullPacketWait = 1;
    m_pathKey.clear();
}

void ExtraProbes::closeRound()
{
    for (const auto& question : m_questions) {
        if (!question->isAnswered)
            probes::appendBounded(m_evidence.*question->outcomes,
                Outcome {.at = question->askedAt, .milliseconds = {}}, kOutcomes);
    }
    m_questions.clear();
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
              probes::appendBounded(m_evidence.*held->outcomes,
                  Outcome {.at = held->askedAt,
                      .milliseconds = time.count(),
                      .retransmissions = held->isDatagram ? 0 : event.retransmissions},
                  kOutcomes);
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
        ask(&Evidence::firstHop, [this](auto handler) {
            return m_firstPath->probe(kUnusedPort, 1, std::move(handler));
        });
    ask(&Evidence::secondHop,
        [this](auto handler) { return m_secondPath->probe(kUnusedPort, 2, std::move(handler)); });
}

/// Many routers send one ICMP message a second to each host (icmp(7), icmp_ratelimit). If the
/// router is asked by datagrams as well, two programs would ask for more than that.
bool ExtraProbes::sparesRouter() const
{
    const auto answered = std::find_if(m_evidence.router.rbegin(), m_evidence.router.rend(),
        [](const Outcome& outcome) { return outcome.milliseconds.has_value(); });
    return answered != m_evidence.router.rend() && !answered->retransmissions;
}

/// Two hosts by turns: one alone may be down, too.
void ExtraProbes::askOthers()
{
    const auto& network = m_evidence.network;
    const bool isOnlyIPv6 = network && !network->value.route4;
    const auto& host = probes::kOtherTargets.at(size_t(m_round % 2));
    ask(&Evidence::otherHosts, [&](auto handler) {
        return m_connections.connectTcp(
            isOnlyIPv6 ? probes::kOtherTarget6 : QString(host), kHttpsPort, std::move(handler));
    });
}

bool ExtraProbes::wantsFullPacket() const
{
    const bool isReached
        = !m_evidence.internet.empty() && m_evidence.internet.back().milliseconds.has_value();
    const bool isWebSilent = m_evidence.web && m_evidence.web->value == WebAnswer::Silent;
    return isReached && !m_fullPacket
        && (m_round >= m_fullPacketWait || m_lostFullPackets > 0 || isWebSilent);
}

void ExtraProbes::sendFullPacket()
{
    m_fullPacketWait = m_round + kRoundsBetweenFullPackets;
    const bool isOnlyIPv6 = m_evidence.network && !m_evidence.network->value.route4;
    m_fullPacket = m_connections.sendFullPacket(
        isOnlyIPv6 ? probes::kInternetTarget6 : probes::kInternetTarget, kHttpPort,
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
