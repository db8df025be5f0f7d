#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;
using platform::NetworkInterface;

/// What the network state is about, if it was read: interfaces that lead to other machines.
struct Adapters {
    int all = 0;
    int wireless = 0;
    int connected = 0; ///< with a cable or an association
    int addressed = 0; ///< of these, with an address
};

std::optional<Adapters> adapters(const Facts& facts)
{
    if (!facts.evidence.network)
        return {};
    Adapters count;
    for (const auto& each : facts.evidence.network->value.interfaces) {
        if (each.isTunnel)
            continue;
        const bool isConnected = each.isUp && each.hasCarrier;
        ++count.all;
        count.wireless += each.isWireless;
        count.connected += isConnected;
        count.addressed += isConnected && (each.hasIPv4 || each.hasIPv6);
    }
    return count;
}

void addCount(
    Finding& finding, const Facts& facts, const QString& name, int count, const QString& text)
{
    const auto at = facts.evidence.network ? facts.evidence.network->at : facts.evidence.now;
    finding.evidence.push_back(item(facts, name, count, {}, at, text.arg(count)));
}

} // namespace

std::optional<Finding> noAdapter(const Facts& facts)
{
    const auto count = adapters(facts);
    if (!count || facts.hasRoute || count->wireless > 0 || count->connected > 0)
        return {};
    Finding finding {.cause = Cause::NoAdapter, .certainty = 0.97};
    finding.sentence = count->all == 0
        ? u"This computer has no network adapter: 0 with a cable, 0 with Wi-Fi."_s
        : u"There is no Wi-Fi adapter and no cable: %1 of %2 adapters have a link."_s
              .arg(count->connected)
              .arg(count->all);
    finding.advice = count->all == 0
        ? u"Plug in a Wi-Fi adapter or check in the system's settings that yours is switched on."_s
        : u"Plug the network cable in at both ends, or use a Wi-Fi adapter."_s;
    addCount(finding, facts, u"system.adapters"_s, count->all, u"Network adapters: %1"_s);
    addCount(finding, facts, u"system.connected"_s, count->connected, u"With a link: %1"_s);
    addCount(finding, facts, u"system.wireless"_s, count->wireless, u"With Wi-Fi: %1"_s);
    return finding;
}

std::optional<Finding> radioOff(const Facts& facts)
{
    const auto count = adapters(facts);
    if (facts.evidence.radioOn.value_or(true) || (count && facts.hasRoute)
        || (count && count->connected > 0))
        return {};
    const int wireless = count ? count->wireless : 1;
    Finding finding {.cause = Cause::RadioOff,
        .certainty = 0.97,
        .sentence = u"Wi-Fi is switched off: %1 of %2 adapters are on."_s.arg(0).arg(wireless),
        .advice = u"Switch Wi-Fi on in the system's menu, or with the key or switch of this "
                  "computer. Airplane mode switches it off, too."_s};
    addCount(finding, facts, u"radio.on"_s, 0, u"Wi-Fi adapters that are on: %1"_s);
    addCount(finding, facts, u"system.wireless"_s, wireless, u"Wi-Fi adapters: %1"_s);
    return finding;
}

std::optional<Finding> noAddress(const Facts& facts)
{
    const auto count = adapters(facts);
    if (!count || facts.hasRoute || count->connected == 0 || count->addressed > 0)
        return {};
    const auto* link = facts.link();
    if (link && link->joiningSsid) // it is not let in yet
        return {};
    constexpr auto kLease = 8s; // an address takes its time, too
    if (facts.newestEvent(platform::RadioEvent::Kind::Connected, kLease))
        return {};
    Finding finding {.cause = Cause::NoAddress,
        .certainty = 0.95,
        .sentence = u"Connected (%1 link), but the network gave this computer %2 addresses."_s
                        .arg(count->connected)
                        .arg(count->addressed),
        .advice = u"Disconnect and connect again. If that does not help, restart the router: it "
                  "hands out the addresses."_s};
    addCount(
        finding, facts, u"system.connected"_s, count->connected, u"Adapters with a link: %1"_s);
    addCount(finding, facts, u"system.addresses"_s, count->addressed,
        u"Of these, with an address: %1"_s);
    return finding;
}

std::optional<Finding> noRoute(const Facts& facts)
{
    const auto count = adapters(facts);
    if (!count || facts.hasRoute || count->addressed == 0)
        return {};
    Finding finding {.cause = Cause::NoRoute,
        .certainty = 0.95,
        .sentence = u"This computer has an address (%1), but %2 routes to the internet."_s
                        .arg(count->addressed)
                        .arg(0),
        .advice = u"Disconnect and connect again. If you set the address by hand, set the router's "
                  "address as gateway, too."_s};
    addCount(
        finding, facts, u"system.addresses"_s, count->addressed, u"Adapters with an address: %1"_s);
    addCount(finding, facts, u"system.routes"_s, 0, u"Routes to the internet: %1"_s);
    return finding;
}

std::optional<Finding> vpnDown(const Facts& facts)
{
    if (!facts.isThroughVpn || !facts.isDown)
        return {};
    const bool isLineFine = facts.secondHop.isAlive();
    if (!isLineFine && !(facts.isNearAlive && !facts.secondHop.hasAnswered()))
        return {};
    const Track& proof = isLineFine ? facts.secondHop : facts.router;
    Finding finding {.cause = Cause::VpnDown,
        .certainty = isLineFine ? 0.95 : 0.6,
        .sentence = u"Your VPN passes nothing on (%1 packets lost); without it, %2 answers in %3."_s
                        .arg(facts.internet.unanswered)
                        .arg(isLineFine ? u"the line"_s : u"the router"_s)
                        .arg(inMs(proof.medianMs.value_or(0))),
        .advice = u"Disconnect the VPN and connect it again, or use the internet without it."_s};
    addSilence(
        finding, facts, u"vpn.unanswered"_s, u"The internet, through the VPN,"_s, facts.internet);
    addLatency(finding, facts, isLineFine ? u"line.latency"_s : u"router.latency"_s,
        isLineFine ? u"The provider, past the VPN,"_s : u"The router"_s, proof);
    return finding;
}

} // namespace netvane::verdict
