#include "verdict/facts.h"

#include <algorithm>
#include <cmath>

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;

constexpr auto kRadioWindow = 20s;

std::optional<RadioChange> radioChange(const Evidence& evidence)
{
    const auto& links = evidence.links;
    if (links.empty() || !links.back().value.ssid)
        return {};
    const auto& last = links.back();
    const auto first = std::ranges::find_if(links, [&](const auto& reading) {
        return reading.at >= last.at - kRadioWindow && reading.value.bssid == last.value.bssid
            && reading.value.ssid == last.value.ssid;
    });
    const auto& from = first->value.counters;
    const auto& to = last.value.counters;
    RadioChange change {.signalDbm = last.value.signalDbm,
        .transmitRateMbps = last.value.transmitRateMbps,
        .seconds = std::chrono::duration<double>(last.at - first->at).count(),
        .sentPackets = platform::grown(from.sentPackets, to.sentPackets),
        .failedPackets = platform::grown(from.failed, to.failed),
        .retries = platform::grown(from.retries, to.retries),
        .beaconsLost = platform::grown(from.beaconsLost, to.beaconsLost),
        .powerSave = last.value.powerSave.value_or(false),
        .at = last.at};
    const double active = platform::grown(from.channelActiveMs, to.channelActiveMs);
    if (active > 0)
        change.busyPercent
            = 100 * std::min(1.0, platform::grown(from.channelBusyMs, to.channelBusyMs) / active);
    return change;
}

bool isWireless(const platform::NetworkState& state, const QString& name)
{
    return std::ranges::any_of(
        state.interfaces, [&](const auto& each) { return each.name == name && each.isWireless; });
}

} // namespace

double RadioChange::failedPercent() const
{
    // Some drivers count what failed among what was sent, and some do not.
    const auto tried = std::max(sentPackets, failedPackets);
    return tried > 0 ? 100 * failedPackets / tried : 0;
}

double Facts::ageOf(TimePoint at) const
{
    return std::max(0.0, std::chrono::duration<double>(evidence.now - at).count());
}

bool Facts::isRecent(TimePoint at, std::chrono::seconds limit) const
{
    return evidence.now - at <= limit;
}

const platform::LinkReading* Facts::link() const
{
    return evidence.links.empty() ? nullptr : &evidence.links.back().value;
}

const Track& Facts::near() const
{
    return router.medianMs && router.medianMs == nearMs ? router : firstHop;
}

bool Facts::lacksLink() const
{
    const auto& network = evidence.network;
    const bool isByCable
        = network && std::ranges::any_of(network->value.interfaces, [](const auto& each) {
              return !each.isTunnel && !each.isWireless && each.isUp && each.hasCarrier;
          });
    if (!evidence.radioOn.value_or(false) || isByCable)
        return false;
    const auto* last = link();
    // A link whose name the driver does not tell has a signal.
    if (!last || (!last->ssid && (!last->signalDbm || last->joiningSsid)))
        return true;
    // It ended since it was read.
    using Kind = platform::RadioEvent::Kind;
    const auto tells = [&](const auto& event) {
        return (event.kind == Kind::Connected || event.kind == Kind::Roamed
                   || event.kind == Kind::Disconnected)
            && (event.interfaceName.isEmpty() || event.interfaceName == last->interfaceName);
    };
    const auto& events = evidence.radioEvents;
    const auto event = std::find_if(events.rbegin(), events.rend(), tells);
    return event != events.rend() && event->kind == Kind::Disconnected
        && event->at > evidence.links.back().at;
}

bool Facts::isEvent(const platform::RadioEvent& event, platform::RadioEvent::Kind kind,
    std::chrono::seconds limit) const
{
    return event.kind == kind && isRecent(event.at, limit)
        && (kind != platform::RadioEvent::Kind::SignInFailed || event.code);
}

const platform::RadioEvent* Facts::newestEvent(
    platform::RadioEvent::Kind kind, std::chrono::seconds limit) const
{
    const auto& events = evidence.radioEvents;
    const auto found = std::find_if(events.rbegin(), events.rend(),
        [&](const auto& event) { return isEvent(event, kind, limit); });
    return found == events.rend() ? nullptr : &*found;
}

int Facts::countOfEvents(platform::RadioEvent::Kind kind, std::chrono::seconds limit) const
{
    return int(std::ranges::count_if(
        evidence.radioEvents, [&](const auto& event) { return isEvent(event, kind, limit); }));
}

/// Packets that are lost before the router are missing from both; what is lost behind it is not.
/// The share is that of two hypotheses which are equally likely at first.
void Facts::findShare()
{
    const double rate = std::clamp(farLoss.percent() / 100, 0.05, 0.95);
    const auto oddsOf = [&](const Loss& loss) {
        constexpr double kByChance = 0.01;
        return loss.lost * std::log(rate / kByChance)
            + (loss.packets - loss.lost) * std::log((1 - rate) / (1 - kByChance));
    };
    const auto lossTo = [&](const Outcomes& outcomes) {
        return trackOf(outcomes).hasAnswered() ? lossSince(outcomes, *farLoss.since) : Loss {};
    };
    const Loss handshakes = lossTo(evidence.router);
    const Loss datagrams = lossTo(evidence.firstHop);
    double odds = oddsOf(datagrams);
    if (handshakes.packets > 0) {
        // One router of ten answers datagrams only now and then, and handshakes always.
        static const double kMost = std::log(10);
        odds = std::min(odds, kMost) + oddsOf(handshakes);
    }
    nearShare = 1 / (1 + std::exp(-odds));
    sharedLoss = handshakes.packets > 0 ? handshakes : datagrams;
    if (nearShare >= 0.5 && handshakes.packets > 0)
        sharedLoss = {handshakes.packets + datagrams.packets, handshakes.lost + datagrams.lost};
}

Facts::Facts(const Evidence& given)
    : evidence(given)
    , router(trackOf(given.router))
    , firstHop(trackOf(given.firstHop))
    , secondHop(trackOf(given.secondHop))
    , others(trackOf(given.otherHosts))
    , nearLoss(lossOf({&given.router, &given.firstHop}))
    , radio(radioChange(given))
{
    bool isByIPv6 = false;
    if (given.network) {
        const auto& state = given.network->value;
        hasRoute = state.route4 || state.route6;
        isByIPv6 = !state.route4 && state.route6;
        isThroughVpn = (state.route4 && state.route4->isThroughTunnel)
            || (isByIPv6 && state.route6->isThroughTunnel);
        isByRadio = state.physicalRoute ? isWireless(state, state.physicalRoute->interfaceName)
                                        : given.radioOn.has_value();
    } else {
        isByRadio = link() && link()->ssid;
    }
    const Outcomes& target = isByIPv6 ? given.internet6 : given.internet;
    internet = trackOf(target);
    internetLoss = lossSince(target, {});
    targetLoss = lossOf({&target, &given.between});
    farLoss = lossOf({&target, &given.between, &given.secondHop});
    if (farLoss.since)
        findShare();
    for (const auto& ms : {router.medianMs, firstHop.medianMs}) {
        if (ms)
            nearMs = std::min(nearMs.value_or(*ms), *ms);
    }
    // What answers behind the router has passed it.
    isNearAlive = router.isAlive() || firstHop.isAlive() || secondHop.isAlive();
    // The first question without an answer: what came after it tells more.
    const auto silentSince = [&] {
        const auto index = std::ptrdiff_t(target.size()) - internet.unanswered;
        return index < std::ptrdiff_t(target.size()) ? target[size_t(index)].at : evidence.now;
    }();
    isWebFine = given.web && given.web->value == WebAnswer::Expected && given.web->at > silentSince;
    // Behind a proxy there may be no other way out.
    const bool isProxyFine = given.usesProxy && given.web
        && (given.web->value == WebAnswer::Expected || given.web->value == WebAnswer::Refused
            || given.web->value == WebAnswer::NotTrusted);
    isReached = internet.isAlive() || others.isAlive() || isWebFine || isProxyFine;
    isDown = !isReached && internet.unanswered >= (secondHop.isAlive() ? 3 : 2);
    isLossy = hasRoute && !isDown && farLoss.isBad && targetLoss.lost >= 2;
}

} // namespace netvane::verdict
