#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;
using platform::RadioEvent;

// Reasons and states of IEEE 802.11-2020, 9.4.1.7 and 9.4.1.9.
constexpr int kInactivity = 4; // also given for beacons that stopped
constexpr int kFourWayTimeout = 15;
constexpr int kGroupKeyTimeout = 16;
constexpr int kAuthenticationFailed = 23; // by 802.1X

void addEvent(Finding& finding, const Facts& facts, const RadioEvent& event)
{
    finding.evidence.push_back(item(facts, u"radio.code"_s, event.code.value_or(0), {}, event.at,
        u"The connection ended with code %1"_s.arg(event.code.value_or(0))));
    finding.evidence.push_back(item(facts, u"radio.endedAgo"_s, facts.ageOf(event.at), u"s"_s,
        event.at, u"That was %1 seconds ago"_s.arg(qRound(facts.ageOf(event.at)))));
}

QString timesWords(int times)
{
    return times == 1 ? u"1 time"_s : u"%1 times"_s.arg(times);
}

/// The sign-in itself failed, by a wrong key.
bool isRefusal(const RadioEvent& ended)
{
    return ended.code == kFourWayTimeout || ended.code == kAuthenticationFailed;
}

/// The access point ended the connection, or is gone.
bool isLost(const RadioEvent& ended)
{
    return (ended.byAccessPoint && !isRefusal(ended)) || ended.code == kInactivity;
}

std::optional<Finding> refusedLink(const Facts& facts)
{
    const auto* failed = facts.newestEvent(RadioEvent::Kind::SignInFailed, 60s);
    const auto* ended = facts.newestEvent(RadioEvent::Kind::Disconnected, 60s);
    const bool isWrongKey = ended && isRefusal(*ended);
    if (!failed && !isWrongKey)
        return {};
    const auto& event = failed ? *failed : *ended;
    const int times = facts.countOfEvents(RadioEvent::Kind::SignInFailed, 60s)
        + (isWrongKey ? facts.countOfEvents(RadioEvent::Kind::Disconnected, 60s) : 0);
    Finding finding {.cause = Cause::SignInRefused,
        .certainty = 0.93,
        .sentence
        = u"The network refused this computer %1 in a minute (code %2)."_s.arg(timesWords(times))
              .arg(event.code.value_or(0)),
        .advice = u"Type the password again. If it is right, the network may allow only devices "
                  "that it knows."_s};
    addEvent(finding, facts, event);
    finding.evidence.push_back(item(facts, u"radio.refusals"_s, times, {}, event.at,
        u"The network refused this computer %1"_s.arg(timesWords(times))));
    return finding;
}

std::optional<Finding> lostLink(const Facts& facts)
{
    const auto* ended = facts.newestEvent(RadioEvent::Kind::Disconnected, 120s);
    if (!ended || !isLost(*ended))
        return {};
    const int seconds = qRound(facts.ageOf(ended->at));
    const int code = ended->code.value_or(0);
    Finding finding {.cause = Cause::AccessPointLost,
        .certainty = 0.9,
        .sentence
        = u"The access point has been gone for %1 seconds (reason %2)."_s.arg(seconds).arg(code),
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

/// A program tries again for a while when a sign-in came to no end.
std::optional<Finding> signingIn(const Facts& facts)
{
    const auto& readings = facts.evidence.links;
    const auto joins = [](const auto& reading) { return reading.value.joiningSsid.has_value(); };
    const auto newest = std::find_if(readings.rbegin(), readings.rend(), joins);
    if (newest == readings.rend() || !facts.isRecent(newest->at, 30s))
        return {};
    auto oldest = newest; // since the last link
    for (auto each = newest; each != readings.rend() && !each->value.ssid; ++each)
        oldest = joins(*each) ? each : oldest;
    const double since = facts.ageOf(oldest->at);
    Finding finding {.cause = Cause::SigningIn,
        .certainty = 0.9,
        .advice = u"Wait a moment. If it takes longer than half a minute, type the password "
                  "again."_s};
    finding.sentence = u"Signing in to \"%1\" for %2 seconds: 0 links so far."_s
                           .arg(inSentence(*newest->value.joiningSsid))
                           .arg(qRound(since));
    finding.evidence.push_back(item(facts, u"radio.signingIn"_s, qRound(since), u"s"_s,
        readings.back().at, u"Signing in since %1 seconds"_s.arg(qRound(since))));
    finding.evidence.push_back(
        item(facts, u"radio.links"_s, 0, {}, readings.back().at, u"Links: 0"_s));
    return finding;
}

} // namespace

std::optional<Finding> noLink(const Facts& facts)
{
    if (!facts.lacksLink())
        return {};
    if (auto refused = refusedLink(facts))
        return refused;
    const auto* link = facts.link();
    if (link && link->joiningSsid)
        return signingIn(facts);
    if (auto lost = lostLink(facts))
        return lost;
    if (auto joining = signingIn(facts))
        return joining;
    if (link
        && link->ssid) // read before the link ended: the next reading tells whether by a switch
        return {};
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

/// The link is there, but not for long.
std::optional<Finding> unsteadyLink(const Facts& facts)
{
    const auto* ended = facts.newestEvent(RadioEvent::Kind::Disconnected, kEventGoesOn);
    const int times
        = int(std::ranges::count_if(facts.evidence.radioEvents, [&](const RadioEvent& event) {
              return event.kind == RadioEvent::Kind::Disconnected && facts.isRecent(event.at, 60s)
                  && isLost(event);
          }));
    const bool isHarmed = facts.isDown || facts.isLossy; // once is enough then
    if (!facts.isByRadio || facts.lacksLink() || !ended || !isLost(*ended)
        || (times < 2 && !isHarmed))
        return {};
    Finding finding {.cause = Cause::AccessPointLost,
        .certainty = 0.9,
        .sentence
        = u"The access point ended the connection %1 times in a minute (reason %2)."_s.arg(times)
              .arg(ended->code.value_or(0)),
        .advice = u"Restart the access point. If it does so again, it may be overloaded or too far "
                  "away."_s};
    if (times < 2)
        finding.sentence = u"The link to the access point was lost %1 seconds ago (reason %2)."_s
                               .arg(qRound(facts.ageOf(ended->at)))
                               .arg(ended->code.value_or(0));
    else if (ended->code == kGroupKeyTimeout)
        finding.sentence
            = u"The access point ended the link %1 times: a key was not renewed (reason %2)."_s
                  .arg(times)
                  .arg(kGroupKeyTimeout);
    addEvent(finding, facts, *ended);
    finding.evidence.push_back(item(facts, u"radio.losses"_s, times, {}, ended->at,
        u"The connection was lost %1 times in the last minute"_s.arg(times)));
    return finding;
}

} // namespace netvane::verdict
