#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;

/// While it is not clear where packets are lost, neither is blamed.
double lossCertainty(double share)
{
    constexpr double kClear = 0.7;
    return share >= kClear ? 0.9 * share : 0.39 * share;
}

/// A time counts as slow beside what is usual in this network, or where that is not known, from a
/// value that no healthy link has.
bool isSlow(const std::optional<double>& ms, const std::optional<double>& usual, double factor,
    double more, double always)
{
    if (!ms)
        return false;
    return usual ? *ms >= std::max(*usual * factor, *usual + more) : *ms >= always;
}

/// The first answers include the search for the router's hardware address.
bool hasSeenEnough(const Facts& facts)
{
    constexpr int kEnough = 4;
    return facts.internet.timed >= kEnough;
}

/// Satellites take 600 ms, so only more is slow by itself.
bool isFarSlow(const Facts& facts)
{
    return hasSeenEnough(facts)
        && isSlow(facts.internet.medianMs, facts.evidence.usual.internet, 3, 150, 800);
}

/// A router that takes its time only for what it answers itself harms nobody.
bool isNearSlow(const Facts& facts)
{
    constexpr double kPassedOn = 0.7;
    return hasSeenEnough(facts) && isSlow(facts.nearMs, facts.evidence.usual.router, 4, 80, 200)
        && facts.internet.medianMs.value_or(0) >= kPassedOn * *facts.nearMs;
}

bool isLoaded(const Facts& facts)
{
    constexpr double kBusyMbps = 0.3; // far above what a connection without use carries
    const auto& load = facts.evidence.load;
    return load && facts.isRecent(load->at, 12s)
        && std::max(load->value.receivedMbps, load->value.sentMbps) >= kBusyMbps;
}

/// The radio is a better explanation, if it loses packets itself. Where it lost its link a moment
/// ago nobody behind it can be blamed.
double sharedWithRadio(const Facts& facts, double certainty)
{
    constexpr double kSuspectPercent = 3;
    constexpr int kWeakDbm = -78;
    const bool isLosing = facts.radio
        && (facts.radio->failedPercent() >= kSuspectPercent || facts.radio->beaconsLost > 0
            || facts.radio->signalDbm.value_or(0) <= kWeakDbm);
    const bool lostLink = facts.isByRadio
        && facts.newestEvent(platform::RadioEvent::Kind::Disconnected, kEventGoesOn);
    if (lostLink)
        return certainty * 0.4;
    return isLosing ? certainty / 2 : certainty;
}

QString routerTime(const Facts& facts)
{
    return facts.nearMs ? inMs(*facts.nearMs) : u"time"_s;
}

int silentSeconds(const Facts& facts)
{
    constexpr int kSecondsBetween = 3;
    return facts.internet.unanswered * kSecondsBetween;
}

QString lossWords(const Loss& loss)
{
    return u"%1 of 100 packets"_s.arg(qRound(loss.percent()));
}

} // namespace

std::optional<Finding> routerDead(const Facts& facts)
{
    if (!facts.hasRoute || !facts.isDown || facts.isNearAlive
        || std::max(facts.router.unanswered, facts.firstHop.unanswered) < 2)
        return {};
    using platform::NeighbourState;
    const auto state
        = facts.evidence.network ? facts.evidence.network->value.router : NeighbourState::Unknown;
    const bool wasThere = facts.router.hasAnswered() || facts.firstHop.hasAnswered();
    double certainty = 0.7;
    if (state == NeighbourState::Failed || (wasThere && state != NeighbourState::Reachable))
        certainty = 0.92;
    else if (wasThere)
        certainty = 0.85;
    else if (state == NeighbourState::Reachable)
        certainty = 0.45;
    Finding finding {.cause = Cause::RouterDead,
        .certainty = sharedWithRadio(facts, certainty),
        .sentence = u"Your router does not answer: %1 packets to it and %2 beyond it are lost."_s
                        .arg(std::max(facts.router.unanswered, facts.firstHop.unanswered))
                        .arg(facts.internet.unanswered),
        .advice = u"Switch the router off, wait ten seconds and switch it on again. If that does "
                  "not help, check its power and cables."_s};
    addSilence(finding, facts, u"router.unanswered"_s, u"The router"_s,
        facts.router.unanswered >= facts.firstHop.unanswered ? facts.router : facts.firstHop);
    addSilence(finding, facts, u"internet.unanswered"_s, u"The internet"_s, facts.internet);
    return finding;
}

std::optional<Finding> lineDown(const Facts& facts)
{
    if (!facts.hasRoute || !facts.isDown)
        return {};
    const auto& network = facts.evidence.network;
    const bool isRouterThere
        = network && network->value.router == platform::NeighbourState::Reachable;
    // A router that answers nothing, and never did, but is there.
    const bool isSilentRouter
        = isRouterThere && !facts.router.hasAnswered() && !facts.firstHop.hasAnswered();
    if (!facts.isNearAlive && !isSilentRouter)
        return {};
    double certainty = facts.isNearAlive ? 0.92 : 0.5;
    if (facts.isThroughVpn && !(facts.secondHop.hasAnswered() && !facts.secondHop.isAlive()))
        certainty = 0.4;
    const bool isOutage = facts.secondHop.isAlive();
    Finding finding {.cause = Cause::LineDown,
        .certainty = certainty,
        .sentence = (isOutage
                ? u"Your provider answers in %1, but nothing behind it has for %2 seconds."_s.arg(
                    inMs(facts.secondHop.medianMs.value_or(0)))
                : u"Your router answers in %1, but the internet has not for %2 seconds."_s.arg(
                    routerTime(facts)))
                        .arg(silentSeconds(facts)),
        .advice = isOutage
            ? u"Your own network is fine. Ask your provider whether there is an outage."_s
            : u"Look at the lights of the modem or router. If the line's light is out or red, call "
              "your provider."_s};
    if (!facts.isNearAlive)
        finding.sentence
            = u"Your router is there, but the internet left %1 packets unanswered (%2 s)."_s
                  .arg(facts.internet.unanswered)
                  .arg(silentSeconds(facts));
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLatency(finding, facts, u"line.latency"_s, u"The provider"_s, facts.secondHop);
    addSilence(finding, facts, u"internet.unanswered"_s, u"The internet"_s, facts.internet);
    finding.evidence.push_back(
        item(facts, u"internet.silence"_s, silentSeconds(facts), u"s"_s, facts.evidence.now,
            u"The internet has not answered for %1 seconds"_s.arg(silentSeconds(facts))));
    return finding;
}

std::optional<Finding> routerLossy(const Facts& facts)
{
    if (!facts.isLossy || facts.sharedLoss.packets == 0)
        return {};
    Finding finding {.cause = Cause::RouterLossy,
        .certainty = sharedWithRadio(facts, lossCertainty(facts.nearShare)),
        .severity = Severity::Poor,
        .sentence = u"Your router loses %1; what it answers takes %2."_s.arg(
            lossWords(facts.sharedLoss), routerTime(facts)),
        .advice = facts.isByRadio
            ? u"Move closer to the router. If packets are lost there, too, restart the router."_s
            : u"Try another cable or port at the router. If it does not help, restart the router."_s};
    addLoss(finding, facts, u"router.loss"_s, u"Router"_s, facts.sharedLoss);
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLoss(finding, facts, u"internet.loss"_s, u"Internet"_s, facts.farLoss);
    return finding;
}

std::optional<Finding> lineLossy(const Facts& facts)
{
    if (!facts.isLossy)
        return {};
    const bool isNearKnown = facts.sharedLoss.packets > 0;
    const double certainty = isNearKnown ? lossCertainty(1 - facts.nearShare) : 0.5;
    Finding finding {.cause = Cause::LineLossy,
        .certainty = certainty,
        .severity = Severity::Poor,
        .sentence = u"Your router answers in %1; the line to your provider loses %2."_s.arg(
            routerTime(facts), lossWords(facts.farLoss)),
        .advice = u"Your Wi-Fi and router are fine. If it goes on, report the loss to your "
                  "provider, with these figures."_s};
    if (!isNearKnown)
        finding.sentence
            = u"The way to the internet loses %1 (%2 of %3)."_s.arg(lossWords(facts.farLoss))
                  .arg(facts.farLoss.lost)
                  .arg(facts.farLoss.packets);
    addLoss(finding, facts, u"line.loss"_s, u"Line"_s, facts.farLoss);
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLoss(finding, facts, u"router.loss"_s, u"Router"_s, facts.sharedLoss);
    return finding;
}

std::optional<Finding> routerSlow(const Facts& facts)
{
    if (!facts.hasRoute || facts.isDown || !isNearSlow(facts))
        return {};
    Finding finding {.cause = Cause::RouterSlow,
        .certainty = sharedWithRadio(facts, 0.85),
        .severity = Severity::Poor,
        .sentence = u"Your router takes %1 to answer; the internet, behind it, takes %2."_s.arg(
            inMs(*facts.nearMs), inMs(*facts.internet.medianMs)),
        .advice = u"Restart the router. Large uploads by anyone on this network slow it down, "
                  "too."_s};
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    return finding;
}

std::optional<Finding> lineSlow(const Facts& facts)
{
    if (!facts.hasRoute || facts.isDown || !isFarSlow(facts))
        return {};
    double certainty = 0.85;
    if (isNearSlow(facts))
        certainty = 0.2;
    else if (isLoaded(facts))
        certainty = 0.3;
    Finding finding {.cause = Cause::LineSlow,
        .certainty = certainty,
        .severity = Severity::Poor,
        .sentence = u"Your router answers in %1; behind it, the internet takes %2."_s.arg(
            routerTime(facts), inMs(*facts.internet.medianMs)),
        .advice = u"Your Wi-Fi and router are fine. If nobody on this network is busy, the delay "
                  "is your provider's."_s};
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    if (const auto& usual = facts.evidence.usual.internet)
        finding.evidence.push_back(item(facts, u"internet.usual"_s, *usual, u"ms"_s,
            facts.evidence.now, u"Usual here: %1"_s.arg(inMs(*usual))));
    return finding;
}

std::optional<Finding> lagUnderLoad(const Facts& facts)
{
    if (!facts.hasRoute || facts.isDown || isNearSlow(facts) || !isLoaded(facts)
        || !isSlow(facts.internet.medianMs, facts.evidence.usual.internet, 2.5, 80, 400))
        return {};
    const auto& load = *facts.evidence.load;
    const bool isDownload = load.value.receivedMbps >= load.value.sentMbps;
    const double mbps = isDownload ? load.value.receivedMbps : load.value.sentMbps;
    Finding finding {.cause = Cause::LagUnderLoad,
        .certainty = 0.85,
        .severity = Severity::Poor,
        .sentence = u"Your %1 of %2 Mbit/s fills the line: the internet takes %3 to answer."_s
                        .arg(isDownload ? u"download"_s : u"upload"_s)
                        .arg(mbps, 0, 'f', 1)
                        .arg(inMs(*facts.internet.medianMs)),
        .advice = u"Wait for the transfer or pause it. A router with smart queue management (SQM) "
                  "avoids this."_s};
    finding.evidence.push_back(item(facts, u"system.load"_s, mbps, u"Mbps"_s, load.at,
        u"This computer transfers %1 Mbit/s"_s.arg(mbps, 0, 'f', 1)));
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    return finding;
}

} // namespace netvane::verdict
