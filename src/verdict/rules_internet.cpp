#include "verdict/rules.h"

#include <algorithm>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;

bool isPortalPage(const std::optional<Reading<WebAnswer>>& web)
{
    return web && (web->value == WebAnswer::Redirect || web->value == WebAnswer::OtherPage);
}

/// Somebody takes every connection and gives no page on any of them. A fault of the MTU looks alike
/// until a packet of full size passed, or a certificate came.
bool isMute(const Facts& facts)
{
    const auto& [web, plainWeb, passed]
        = std::tie(facts.evidence.web, facts.evidence.plainWeb, facts.evidence.fullSizePassed);
    if (!web || !plainWeb || plainWeb->value != WebAnswer::Silent || !facts.internet.isAlive()
        || facts.isLossy)
        return false;
    const bool hasPassed = passed && passed->value && passed->at > std::min(web->at, plainWeb->at);
    return web->value == WebAnswer::NotTrusted || (web->value == WebAnswer::Silent && hasPassed);
}

Finding mutePortal(const Facts& facts)
{
    Finding finding {.cause = Cause::Portal,
        .certainty = 0.7,
        .sentence
        = u"Connections open (%1), but 2 of 2 pages do not come. A log-in may be needed."_s.arg(
            inMs(facts.internet.medianMs.value_or(0))),
        .advice = u"Open any web page whose address begins with http, and look for a log-in. "
                  "Otherwise restart the router."_s};
    finding.evidence.push_back(item(facts, u"portal.silentPages"_s, 2, {},
        facts.evidence.plainWeb->at, u"2 checks of the web brought a connection, but no page"_s));
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    return finding;
}

} // namespace

std::optional<Finding> portal(const Facts& facts)
{
    const auto& evidence = facts.evidence;
    if (facts.hasRoute && isMute(facts))
        return mutePortal(facts);
    if (!facts.hasRoute || (!isPortalPage(evidence.web) && !isPortalPage(evidence.plainWeb)))
        return {};
    // The page itself, asked for later, is the better witness.
    const auto& page = isPortalPage(evidence.plainWeb) ? evidence.plainWeb : evidence.web;
    if (evidence.web && evidence.web->value == WebAnswer::Expected && evidence.web->at > page->at)
        return {};
    const bool isRedirect = page->value == WebAnswer::Redirect;
    const bool hasHost = isRedirect && !evidence.portalHost.isEmpty();
    const QString time = inMs(facts.nearMs.value_or(facts.internet.medianMs.value_or(0)));
    Finding finding {.cause = Cause::Portal,
        .certainty = 0.96,
        .sentence = hasHost
            ? u"This network wants a log-in first: %1 (in %2, 1 page replaced)."_s.arg(
                inSentence(evidence.portalHost), time)
            : u"This network wants a log-in first (it answers in %1, 1 page replaced)."_s.arg(time),
        .advice = u"Open the log-in page: click the log-in card in Netvane, or open any web page "
                  "whose address begins with http."_s};
    finding.evidence.push_back(item(facts, u"portal.replacedPages"_s, 1, {}, page->at,
        isRedirect ? u"A check of the web was sent to another server"_s
                   : u"A check of the web brought another page"_s));
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    return finding;
}

std::optional<Finding> mtu(const Facts& facts)
{
    const auto& passed = facts.evidence.fullSizePassed;
    if (!passed || passed->value || !facts.isRecent(passed->at, 60s) || !facts.internet.isAlive())
        return {};
    const bool isWebSilent = facts.evidence.web && facts.evidence.web->value == WebAnswer::Silent;
    Finding finding {.cause = Cause::Mtu,
        .certainty = isWebSilent ? 0.95 : 0.9,
        .sentence = u"Small packets pass (%1), but of 2 large ones %2 arrived: pages stall."_s
                        .arg(inMs(facts.internet.medianMs.value_or(0)))
                        .arg(0),
        .advice = u"Set the MTU of this connection to 1400 in the system's network settings, or "
                  "in the router, or disconnect the VPN."_s};
    finding.evidence.push_back(item(facts, u"internet.largePackets"_s, 0, u"packets"_s, passed->at,
        u"Of 2 packets of full size 0 arrived"_s));
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    return finding;
}

std::optional<Finding> ipv6Broken(const Facts& facts)
{
    constexpr int kEnough = 3;
    const auto track = trackOf(facts.evidence.internet6);
    const auto& network = facts.evidence.network;
    if (!network || !network->value.route4 || !network->value.route6 || !facts.isReached
        || track.unanswered < kEnough)
        return {};
    Finding finding {.cause = Cause::IPv6Broken,
        .certainty = 0.9,
        .severity = Severity::Poor,
        .sentence = u"IPv6 does not work (%1 packets lost), though IPv4 answers in %2."_s
                        .arg(track.unanswered)
                        .arg(inMs(facts.internet.medianMs.value_or(0))),
        .advice = u"Pages may open slowly. Restart the router; if that does not help, switch IPv6 "
                  "off for this connection and tell your provider."_s};
    addSilence(finding, facts, u"ipv6.unanswered"_s, u"The internet, over IPv6,"_s, track);
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    return finding;
}

std::optional<Finding> targetUnreachable(const Facts& facts)
{
    constexpr int kEnough = 3;
    if (!facts.hasRoute || facts.internet.unanswered < kEnough || facts.evidence.usesProxy
        || (!facts.others.isAlive() && !facts.isWebFine))
        return {};
    Finding finding {.cause = Cause::TargetUnreachable,
        .certainty = 0.9,
        .severity = Severity::Notice,
        .sentence = u"The internet works (%1), but one host, 1.1.1.1, lost %2 packets."_s
                        .arg(inMs(facts.others.medianMs.value_or(facts.nearMs.value_or(0))))
                        .arg(facts.internet.unanswered),
        .advice = u"Nothing to do here: only that one host does not answer."_s};
    addSilence(finding, facts, u"target.unanswered"_s, u"1.1.1.1"_s, facts.internet);
    addLatency(finding, facts, u"internet.latency"_s, u"Another host"_s, facts.others);
    if (!facts.others.medianMs)
        addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    return finding;
}

std::optional<Finding> healthy(const Facts& facts)
{
    if (!facts.hasRoute || !facts.isReached || facts.isLossy || isMute(facts))
        return {};
    const auto lookups = trackOf(facts.evidence.lookups);
    const bool isNamed = lookups.isAlive() && !facts.evidence.lookupPendingSince;
    Finding finding {.cause = Cause::Healthy,
        .certainty = isNamed && facts.internet.asked >= 2 ? 0.8 : 0.5,
        .severity = Severity::Fine,
        .sentence = u"Router and internet are fine."_s};
    if (facts.isByRadio)
        finding.sentence = u"Wi-Fi, router and internet are fine."_s;
    else if (facts.evidence.network)
        finding.sentence = u"Cable, router and internet are fine."_s;
    if (facts.radio && facts.radio->signalDbm)
        finding.evidence.push_back(item(facts, u"radio.signal"_s, *facts.radio->signalDbm, u"dBm"_s,
            facts.radio->at, u"Signal: %1 dBm"_s.arg(*facts.radio->signalDbm)));
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addLatency(finding, facts, u"line.latency"_s, u"The provider"_s, facts.secondHop);
    addLatency(finding, facts, u"internet.latency"_s, u"The internet"_s, facts.internet);
    addLatency(finding, facts, u"dns.lookup"_s, u"DNS"_s, lookups);
    addLoss(finding, facts, u"internet.loss"_s, u"Internet"_s, facts.internetLoss);
    return finding;
}

} // namespace netvane::verdict
