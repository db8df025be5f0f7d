#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;
using platform::RadioEvent;

constexpr int kWeakDbm = -78;
constexpr double kLossyPercent = 3;

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

} // namespace

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
    // The access point holds packets back for one that sleeps, for ten beacon intervals of about
    // 100 ms at most. Packets come at any moment of such a time, so that some wait a little and
    // some long. A router that is slow itself is about equally slow each time.
    constexpr double kMostMs = 1000;
    constexpr double kUneven = 2.5;
    const auto hasSpikes = [&](const Track& each) {
        const double usual = facts.evidence.usual.router.value_or(0);
        return each.medianMs && *each.medianMs >= std::max(20.0, kUneven * usual)
            && *each.medianMs <= kMostMs && *each.leastMs * 3 <= *each.medianMs
            && each.uneven >= kUneven && facts.internet.medianMs.value_or(0) >= *each.medianMs / 2;
    };
    const Track& track = hasSpikes(facts.router) ? facts.router : facts.firstHop;
    if (!hasSpikes(track) || facts.nearLoss.isBad || facts.internet.medianMs.value_or(0) < 20)
        return {};
    Finding finding {.cause = Cause::PowerSave,
        .certainty = 0.87,
        .severity = Severity::Notice,
        .sentence = u"Wi-Fi power saving delays packets: the router takes %1 to %2."_s.arg(
            inMs(*track.leastMs), inMs(*track.medianMs)),
        .advice = u"It saves battery. To switch it off, ask your system's help for \"Wi-Fi power "
                  "saving\"."_s};
    addRadio(finding, facts);
    finding.evidence.push_back(item(facts, u"router.delay"_s, *track.medianMs, u"ms"_s,
        *track.lastAnswer, u"Every other answer takes %1 or more"_s.arg(inMs(*track.medianMs))));
    finding.evidence.push_back(item(facts, u"router.least"_s, *track.leastMs, u"ms"_s,
        *track.lastAnswer, u"The quickest answer took %1"_s.arg(inMs(*track.leastMs))));
    return finding;
}

std::optional<Finding> scanning(const Facts& facts)
{
    constexpr double kSpikeMs = 40; // a radio is away for some 110 ms on each channel
    constexpr int kFewest = 3;
    // Before it had this link it had to look for a network itself.
    const auto* joined = facts.newestEvent(RadioEvent::Kind::Connected, 120s);
    const auto isSinceJoined = [&](TimePoint at) { return !joined || at > joined->at; };
    const int scans
        = int(std::ranges::count_if(facts.evidence.radioEvents, [&](const RadioEvent& event) {
              return event.kind == RadioEvent::Kind::ScanStarted && facts.isRecent(event.at, 60s)
                  && isSinceJoined(event.at);
          }));
    const auto& events = facts.evidence.radioEvents;
    const auto last = std::find_if(events.rbegin(), events.rend(), [](const RadioEvent& event) {
        return event.kind == RadioEvent::Kind::ScanStarted
            || event.kind == RadioEvent::Kind::ScanEnded;
    });
    const bool goesOn = facts.newestEvent(RadioEvent::Kind::ScanStarted, kEventGoesOn)
        || (last != events.rend() && last->kind == RadioEvent::Kind::ScanStarted);
    if (!facts.isByRadio || scans < 2 || facts.isDown || facts.lacksLink() || !goesOn)
        return {};
    // Scans that took part in what was slow or lost.
    const auto isDuringScan = [&](TimePoint at) {
        for (auto start = events.begin(); start != events.end(); ++start) {
            if (start->kind != RadioEvent::Kind::ScanStarted)
                continue;
            const auto end = std::ranges::find(
                start, events.end(), RadioEvent::Kind::ScanEnded, &RadioEvent::kind);
            const auto endedAt = end == events.end() ? facts.evidence.now : end->at;
            if (at > start->at - 3s && at < endedAt)
                return true;
        }
        return false;
    };
    int bad = 0;
    int duringScan = 0;
    for (const auto* outcomes : {&facts.evidence.router, &facts.evidence.firstHop}) {
        const double spikeMs = std::max(kSpikeMs, 3 * trackOf(*outcomes).leastMs.value_or(0));
        for (const auto& outcome : *outcomes) {
            const bool isBad
                = outcome.milliseconds.value_or(1e9) >= spikeMs && isSinceJoined(outcome.at);
            bad += isBad;
            duringScan += isBad && isDuringScan(outcome.at);
        }
    }
    if (duringScan < kFewest || duringScan * 4 < bad * 3)
        return {};
    Finding finding {.cause = Cause::Scanning,
        .certainty = 0.91,
        .severity = Severity::Poor,
        .sentence
        = u"Another program scans for networks: %1 scans a minute held up %2 packets."_s.arg(scans)
              .arg(duringScan),
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
    const int roams = facts.countOfEvents(RadioEvent::Kind::Roamed, 60s);
    if (!facts.isByRadio || roams < 2 || !facts.newestEvent(RadioEvent::Kind::Roamed, kEventGoesOn))
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
