#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;
using platform::RadioEvent;

constexpr int kWeakDbm = -78;
constexpr double kLossyPercent = 3;

// Reasons and states of IEEE 802.11-2020, 9.4.1.7 and 9.4.1.9.
constexpr int kInactivity = 4; // also given for beacons that stopped
constexpr int kFourWayTimeout = 15;
constexpr int kGroupKeyTimeout = 16;
constexpr int kAuthenticationFailed = 23; // by 802.1X

/// Of the events of this kind those of the last `limit`. A sign-in that failed without a code was
/// not answered at all, as by an access point that is gone: nobody refused it.
auto isRecent(const Facts& facts, RadioEvent::Kind kind, std::chrono::seconds limit)
{
    return [&facts, kind, limit](const RadioEvent& event) {
        return event.kind == kind && facts.isRecent(event.at, limit)
            && (kind != RadioEvent::Kind::SignInFailed || event.code);
    };
}

/// Null without one.
const RadioEvent* newest(const Facts& facts, RadioEvent::Kind kind, std::chrono::seconds limit)
{
    const auto& events = facts.evidence.radioEvents;
    const auto found = std::find_if(events.rbegin(), events.rend(), isRecent(facts, kind, limit));
    return found == events.rend() ? nullptr : &*found;
}

int countOf(const Facts& facts, RadioEvent::Kind kind, std::chrono::seconds limit)
{
    return int(std::ranges::count_if(facts.evidence.radioEvents, isRecent(facts, kind, limit)));
}

/// Wi-Fi is the way out, or the only one there could be, and it has no link.
bool lacksLink(const Facts& facts)
{
    const auto& network = facts.evidence.network;
    const bool isConnected
        = network && std::ranges::any_of(network->value.interfaces, [](const auto& each) {
              return !each.isTunnel && !each.isWireless && each.isUp && each.hasCarrier;
          });
    const auto* link = facts.link();
    // A link whose name the driver does not tell has a signal.
    const bool hasLink = link && (link->ssid || (link->signalDbm && !link->joiningSsid));
    return facts.evidence.radioOn.value_or(false) && !isConnected && !hasLink;
}

/// Packets suffer on their way to the router, and so does what lies behind it.
bool suffersNear(const Facts& facts)
{
    const bool isLossy = facts.nearLoss.isBad && facts.targetLoss.lost > 0;
    const bool isSlow = facts.nearMs.value_or(0) >= 100
        && facts.internet.medianMs.value_or(0) >= *facts.nearMs * 0.7;
    return isLossy || isSlow || (facts.isDown && !facts.isNearAlive);
}

/// Losses on the air that a repetition made good harm nobody.
bool losesProbes(const Facts& facts)
{
    return facts.isDown || facts.nearLoss.lost > 0 || facts.targetLoss.lost > 0;
}

void addRadio(Finding& finding, const Facts& facts)
{
    const auto& radio = *facts.radio;
    if (radio.signalDbm)
        finding.evidence.push_back(item(facts, u"radio.signal"_s, *radio.signalDbm, u"dBm"_s,
            radio.at, u"Signal: %1 dBm"_s.arg(*radio.signalDbm)));
    if (radio.sentPackets + radio.failedPackets > 0)
        finding.evidence.push_back(
            item(facts, u"radio.failed"_s, radio.failedPercent(), u"%"_s, radio.at,
                u"%1 of %2 packets failed on the air"_s.arg(radio.failedPackets)
                    .arg(radio.sentPackets + radio.failedPackets)));
    if (radio.beaconsLost > 0)
        finding.evidence.push_back(item(facts, u"radio.beaconsLost"_s, radio.beaconsLost,
            u"packets"_s, radio.at, u"%1 beacons were not heard"_s.arg(radio.beaconsLost)));
    if (radio.busyPercent)
        finding.evidence.push_back(item(facts, u"radio.busy"_s, *radio.busyPercent, u"%"_s,
            radio.at, u"The channel is busy %1 % of the time"_s.arg(qRound(*radio.busyPercent))));
    addLoss(finding, facts, u"router.loss"_s, u"Router"_s, facts.nearLoss);
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
}

void addEvent(Finding& finding, const Facts& facts, const RadioEvent& event)
{
    finding.evidence.push_back(item(facts, u"radio.code"_s, event.code.value_or(0), {}, event.at,
        u"The connection ended with code %1"_s.arg(event.code.value_or(0))));
    finding.evidence.push_back(item(facts, u"radio.endedAgo"_s, facts.ageOf(event.at), u"s"_s,
        event.at, u"That was %1 seconds ago"_s.arg(qRound(facts.ageOf(event.at)))));
}

std::optional<Finding> refusedLink(const Facts& facts)
{
    const auto* failed = newest(facts, RadioEvent::Kind::SignInFailed, 60s);
    const auto* ended = newest(facts, RadioEvent::Kind::Disconnected, 60s);
    const bool isWrongKey = ended && ended->code
        && (*ended->code == kFourWayTimeout || *ended->code == kAuthenticationFailed);
    if (!failed && !isWrongKey)
        return {};
    const auto& event = failed ? *failed : *ended;
    const int times = countOf(facts, RadioEvent::Kind::SignInFailed, 60s)
        + (isWrongKey ? countOf(facts, RadioEvent::Kind::Disconnected, 60s) : 0);
    Finding finding {.cause = Cause::SignInRefused,
        .certainty = 0.93,
        .sentence
        = u"The network refuses this computer: %1 failures in a minute (code %2)."_s.arg(times).arg(
            event.code.value_or(0)),
        .advice = u"Type the password again. If it is right, the network may allow only devices "
                  "that it knows."_s};
    addEvent(finding, facts, event);
    finding.evidence.push_back(item(facts, u"radio.refusals"_s, times, {}, event.at,
        u"The network refused this computer %1 times"_s.arg(times)));
    return finding;
}

std::optional<Finding> lostLink(const Facts& facts)
{
    const auto* ended = newest(facts, RadioEvent::Kind::Disconnected, 120s);
    const bool isLost = ended && (ended->byAccessPoint || ended->code == kInactivity);
    if (!isLost)
        return {};
    const int seconds = qRound(facts.ageOf(ended->at));
    const int code = ended->code.value_or(0);
    Finding finding {.cause = Cause::AccessPointLost,
        .certainty = 0.9,
        .sentence
        = u"The access point is gone since %1 seconds (reason %2)."_s.arg(seconds).arg(code),
        .advice = u"Check that the access point has power and is in range. This computer joins "
                  "again by itself once it is back."_s};
    if (ended->byAccessPoint)
        finding.sentence
            = u"The access point ended the connection %1 seconds ago (reason %2)."_s.arg(seconds)
                  .arg(code);
    if (code == kGroupKeyTimeout)
        finding.sentence
            = u"The access point ended the link %1 s ago: a key was not renewed (reason %2)."_s
                  .arg(seconds)
                  .arg(code);
    addEvent(finding, facts, *ended);
    return finding;
}

} // namespace

std::optional<Finding> noLink(const Facts& facts)
{
    if (!lacksLink(facts))
        return {};
    if (auto refused = refusedLink(facts))
        return refused;
    const auto* link = facts.link();
    if (link && link->joiningSsid) {
        const double since = facts.evidence.links.empty() ? 0 : [&] {
            auto first = facts.evidence.links.end();
            while (first != facts.evidence.links.begin()
                && std::prev(first)->value.joiningSsid == link->joiningSsid)
                --first;
            return facts.ageOf(first->at);
        }();
        Finding finding {.cause = Cause::SigningIn,
            .certainty = 0.9,
            .advice = u"Wait a moment. If it takes longer than half a minute, type the password "
                      "again."_s};
        finding.sentence = u"Signing in to \"%1\" for %2 seconds: 0 links so far."_s
                               .arg(inSentence(*link->joiningSsid))
                               .arg(qRound(since));
        finding.evidence.push_back(item(facts, u"radio.signingIn"_s, qRound(since), u"s"_s,
            facts.evidence.links.back().at, u"Signing in since %1 seconds"_s.arg(qRound(since))));
        finding.evidence.push_back(
            item(facts, u"radio.links"_s, 0, {}, facts.evidence.links.back().at, u"Links: 0"_s));
        return finding;
    }
    if (auto lost = lostLink(facts))
        return lost;
    Finding finding {.cause = Cause::NotConnected,
        .certainty = 0.92,
        .sentence = u"Wi-Fi is on, but connected to no network (1 adapter, 0 links)."_s,
        .advice = u"Choose your network in the system's menu."_s};
    finding.evidence.push_back(
        item(facts, u"radio.on"_s, 1, {}, facts.evidence.now, u"Wi-Fi adapters that are on: 1"_s));
    finding.evidence.push_back(
        item(facts, u"radio.links"_s, 0, {}, facts.evidence.now, u"Links: 0"_s));
    return finding;
}

std::optional<Finding> weakSignal(const Facts& facts)
{
    if (!facts.isByRadio || !facts.radio || !facts.radio->signalDbm)
        return {};
    const auto& radio = *facts.radio;
    const int signal = *radio.signalDbm;
    const bool isLossy = radio.failedPercent() >= kLossyPercent && losesProbes(facts);
    if (signal > kWeakDbm || (!suffersNear(facts) && !isLossy))
        return {};
    Finding finding {.cause = Cause::WeakSignal,
        .certainty = 0.9,
        .severity = facts.isDown ? Severity::Broken : Severity::Poor,
        .sentence
        = u"Your Wi-Fi signal is weak (%1 dBm) and loses %2 of 100 packets."_s.arg(signal).arg(
            qRound(std::max(radio.failedPercent(), facts.nearLoss.percent()))),
        .advice = u"Move closer to the router, or move things of metal out of the way. A second "
                  "access point helps for good."_s};
    addRadio(finding, facts);
    return finding;
}

std::optional<Finding> airLossy(const Facts& facts)
{
    if (!facts.isByRadio || !facts.radio)
        return {};
    const auto& radio = *facts.radio;
    const bool isCounted
        = radio.failedPackets >= 4 && radio.failedPercent() >= kLossyPercent && losesProbes(facts);
    if (!isCounted && !(suffersNear(facts) && radio.beaconsLost > 0))
        return {};
    const bool isWeak = radio.signalDbm.value_or(0) <= kWeakDbm;
    Finding finding {.cause = Cause::AirLossy,
        .certainty = isWeak ? 0.4 : 0.9,
        .severity = facts.isDown ? Severity::Broken : Severity::Poor,
        .sentence = u"The signal is good (%1 dBm), but %2 of 100 packets are lost on the air."_s
                        .arg(radio.signalDbm.value_or(0))
                        .arg(qRound(radio.failedPercent())),
        .advice = u"Something disturbs this channel. Set another channel or the 5 GHz band in the "
                  "router, or move away from other devices."_s};
    if (!isCounted)
        finding.sentence = u"%1 beacons were not heard and %2 of 100 packets are lost on the air."_s
                               .arg(radio.beaconsLost)
                               .arg(qRound(facts.nearLoss.percent()));
    addRadio(finding, facts);
    return finding;
}

std::optional<Finding> airBusy(const Facts& facts)
{
    constexpr double kBusyPercent = 75;
    if (!facts.isByRadio || !facts.radio || facts.radio->busyPercent.value_or(0) < kBusyPercent
        || !suffersNear(facts))
        return {};
    Finding finding {.cause = Cause::AirBusy,
        .certainty = 0.88,
        .severity = Severity::Poor,
        .sentence = u"The Wi-Fi channel is busy %1 % of the time; the router takes %2 to answer."_s
                        .arg(qRound(*facts.radio->busyPercent))
                        .arg(inMs(facts.nearMs.value_or(0))),
        .advice = u"Set another channel in the router. Channel Analysis in Netvane shows which "
                  "ones are used least."_s};
    addRadio(finding, facts);
    return finding;
}

std::optional<Finding> powerSave(const Facts& facts)
{
    if (!facts.isByRadio || !facts.radio || !facts.radio->powerSave || facts.isDown)
        return {};
    // The access point holds packets back for one that sleeps, for some beacon intervals of about
    // 100 ms at most. Now and then the radio is awake, and the answer quick.
    const Track& track = facts.near();
    const bool hasSpikes = track.medianMs && track.leastMs && *track.medianMs >= 20
        && *track.medianMs <= 400 && *track.leastMs * 3 <= *track.medianMs;
    if (!hasSpikes || facts.nearLoss.isBad || facts.internet.medianMs.value_or(0) < 20)
        return {};
    Finding finding {.cause = Cause::PowerSave,
        .certainty = 0.87,
        .severity = Severity::Notice,
        .sentence = u"Wi-Fi power saving delays packets: the router takes %1 to %2."_s.arg(
            inMs(*track.leastMs), inMs(*facts.nearMs)),
        .advice = u"It saves battery. To switch it off, ask your system's help for \"Wi-Fi power "
                  "saving\"."_s};
    addRadio(finding, facts);
    finding.evidence.push_back(item(facts, u"router.least"_s, *track.leastMs, u"ms"_s,
        *track.lastAnswer, u"The quickest answer took %1"_s.arg(inMs(*track.leastMs))));
    return finding;
}

std::optional<Finding> scanning(const Facts& facts)
{
    constexpr double kSpikeMs = 80;
    const int scans = countOf(facts, RadioEvent::Kind::ScanStarted, 60s);
    if (!facts.isByRadio || scans < 2 || facts.isDown)
        return {};
    // Scans that took part in what was slow or lost.
    const auto& events = facts.evidence.radioEvents;
    const auto isDuringScan = [&](TimePoint at) {
        for (auto start = events.begin(); start != events.end(); ++start) {
            if (start->kind != RadioEvent::Kind::ScanStarted)
                continue;
            const auto end = std::ranges::find(
                start, events.end(), RadioEvent::Kind::ScanEnded, &RadioEvent::kind);
            const auto endedAt = end == events.end() ? start->at + 5s : end->at;
            if (at > start->at - 3s && at < endedAt)
                return true;
        }
        return false;
    };
    int bad = 0;
    int duringScan = 0;
    for (const auto& outcome : facts.evidence.router) {
        const bool isBad = outcome.milliseconds.value_or(1e9) >= kSpikeMs;
        bad += isBad;
        duringScan += isBad && isDuringScan(outcome.at);
    }
    if (duringScan < 2 || duringScan * 4 < bad * 3)
        return {};
    Finding finding {.cause = Cause::Scanning,
        .certainty = 0.91,
        .severity = Severity::Poor,
        .sentence
        = u"A program scans for networks: %1 scans a minute held up %2 packets."_s.arg(scans).arg(
            duringScan),
        .advice = u"Close the list of Wi-Fi networks and programs that show or use nearby "
                  "networks."_s};
    finding.evidence.push_back(item(facts, u"radio.scans"_s, scans, {}, facts.evidence.now,
        u"%1 scans in the last minute"_s.arg(scans)));
    finding.evidence.push_back(item(facts, u"router.heldUp"_s, duringScan, u"packets"_s,
        facts.evidence.now, u"%1 packets were late or lost during scans"_s.arg(duringScan)));
    return finding;
}

std::optional<Finding> roaming(const Facts& facts)
{
    const int roams = countOf(facts, RadioEvent::Kind::Roamed, 60s);
    if (!facts.isByRadio || roams < 2)
        return {};
    const auto* link = facts.link();
    Finding finding {.cause = Cause::Roaming,
        .certainty = 0.89,
        .severity = Severity::Poor,
        .sentence
        = u"Wi-Fi changes between access points: %1 times in a minute, now at %2 dBm."_s.arg(roams)
              .arg(link ? link->signalDbm.value_or(0) : 0),
        .advice = u"Sit closer to one access point. Each change interrupts the connection for a "
                  "moment."_s};
    finding.evidence.push_back(item(facts, u"radio.roams"_s, roams, {}, facts.evidence.now,
        u"%1 changes of the access point in the last minute"_s.arg(roams)));
    if (link && link->signalDbm)
        finding.evidence.push_back(item(facts, u"radio.signal"_s, *link->signalDbm, u"dBm"_s,
            facts.evidence.now, u"Signal: %1 dBm"_s.arg(*link->signalDbm)));
    return finding;
}

} // namespace netvane::verdict
