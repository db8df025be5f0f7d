#include "verdict/answers.h"
#include "verdict/rules.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

using namespace std::chrono_literals;
using Kind = platform::NameAnswer::Kind;

/// How a name server answered lately.
struct ServerTrack {
    const NameServer* server = nullptr;
    int unanswered = 0; ///< in a row, up to now, with no answer that helps
    bool isFine = false; ///< the last answer has addresses
    bool isAsked = false; ///< within the last half minute
    bool deniesName = false; ///< the last two say that there is no such name, or no address
    std::optional<double> milliseconds; ///< of the last answer
};

ServerTrack trackOf(const Facts& facts, const NameServer& server)
{
    ServerTrack track {.server = &server};
    int denials = 0;
    for (const auto& [answer, at] : server.answers) {
        const bool denies = answer.kind == Kind::NoSuchName || answer.kind == Kind::NoAddresses;
        const bool isSilent = answer.kind == Kind::Nothing || answer.kind == Kind::Failed;
        track.unanswered = isSilent ? track.unanswered + 1 : 0;
        denials = denies ? denials + 1 : 0;
        track.isFine = answer.kind == Kind::Addresses;
        track.milliseconds = isSilent ? std::nullopt : std::optional(answer.milliseconds);
        track.isAsked = facts.isRecent(at, 30s);
    }
    track.deniesName = denials >= 2;
    return track;
}

std::vector<ServerTrack> serverTracks(const Facts& facts)
{
    std::vector<ServerTrack> tracks;
    for (const auto& server : facts.evidence.nameServers)
        tracks.push_back(trackOf(facts, server));
    return tracks;
}

/// To what answers farthest away.
double pathMs(const Facts& facts)
{
    const auto near = facts.secondHop.isAlive() ? facts.secondHop.medianMs : facts.nearMs;
    return facts.internet.isAlive() ? facts.internet.medianMs.value_or(0)
                                    : facts.others.medianMs.value_or(near.value_or(0));
}

/// Look-ups fail or hang.
bool hasTrouble(const Facts& facts)
{
    const auto lookups = trackOf(facts.evidence.lookups);
    const auto& pending = facts.evidence.lookupPendingSince;
    return lookups.unanswered > 0 || (pending && !facts.isRecent(*pending, 2s));
}

/// Packets to the internet are lost, so those to name servers are, too.
bool hasLosses(const Facts& facts)
{
    return facts.isLossy || facts.farLoss.lost + facts.sharedLoss.lost >= 2;
}

int enoughSilence(const Facts& facts)
{
    return hasLosses(facts) ? 5 : 2;
}

std::optional<double> slowestOfLastTwo(const Outcomes& lookups)
{
    if (lookups.size() < 2)
        return {};
    const auto& last = lookups.back().milliseconds;
    const auto& before = lookups[lookups.size() - 2].milliseconds;
    return last && before ? std::optional(std::min(*last, *before)) : std::nullopt;
}

void addPath(Finding& finding, const Facts& facts)
{
    finding.evidence.push_back(item(facts, u"internet.latency"_s, pathMs(facts), u"ms"_s,
        facts.evidence.now, u"The internet answers in %1"_s.arg(inMs(pathMs(facts)))));
}

void addServer(Finding& finding, const Facts& facts, const ServerTrack& track, int number)
{
    const auto name = u"dns.server%1."_s.arg(number);
    const auto at
        = track.server->answers.empty() ? facts.evidence.now : track.server->answers.back().at;
    finding.evidence.push_back(
        item(facts, name + u"unanswered"_s, track.unanswered, u"packets"_s, at,
            u"DNS server %1: the last %2 questions brought no answer"_s.arg(track.server->address)
                .arg(track.unanswered)));
    if (track.milliseconds)
        finding.evidence.push_back(
            item(facts, name + u"latency"_s, *track.milliseconds, u"ms"_s, at,
                u"DNS server %1 answers in %2"_s.arg(
                    track.server->address, inMs(*track.milliseconds))));
}

/// The page of the portal check came, over TLS, so names lead where they should.
bool isWebFound(const Facts& facts)
{
    const auto& web = facts.evidence.web;
    return web && (web->value == WebAnswer::Expected || web->value == WebAnswer::Refused);
}

} // namespace

std::optional<Finding> dnsDead(const Facts& facts)
{
    const auto tracks = serverTracks(facts);
    const auto slow = slowestOfLastTwo(facts.evidence.lookups);
    const bool isSlow = slow.value_or(0) >= 2000;
    if (!facts.isReached || (!hasTrouble(facts) && !isSlow))
        return {};
    const int enough = enoughSilence(facts);
    const int silent = int(std::ranges::count_if(
        tracks, [enough](const auto& track) { return track.unanswered >= enough; }));
    const auto lookups = trackOf(facts.evidence.lookups);
    Finding finding {.cause = Cause::DnsDead,
        .advice = u"Set another DNS server in the system's network settings, such as 1.1.1.1 or "
                  "9.9.9.9, or restart the router."_s};
    const auto fine = std::ranges::find_if(tracks, [](const auto& track) { return track.isFine; });
    if (tracks.empty() && lookups.unanswered >= 2) {
        finding.certainty = 0.7;
        finding.sentence
            = u"The internet answers, but %1 DNS servers are set: %2 look-ups failed."_s.arg(0).arg(
                lookups.unanswered);
        finding.evidence.push_back(item(facts, u"dns.servers"_s, 0, {}, facts.evidence.now,
            u"This computer has no DNS server"_s));
    } else if (silent > 0 && silent == int(tracks.size())) {
        finding.certainty = 0.93;
        finding.sentence
            = u"The internet answers in %1, but DNS does not: %2 questions to %3 are lost."_s
                  .arg(inMs(pathMs(facts)))
                  .arg(tracks.front().unanswered)
                  .arg(tracks.front().server->address);
    } else if (silent > 0 && fine != tracks.end()) {
        const auto dead = std::ranges::find_if(
            tracks, [enough](const auto& track) { return track.unanswered >= enough; });
        finding.certainty = 0.85;
        finding.severity = Severity::Poor;
        finding.sentence
            = u"DNS server %1 is dead (%2 lost); %3 answers in %4."_s.arg(dead->server->address)
                  .arg(dead->unanswered)
                  .arg(fine->server->address, inMs(fine->milliseconds.value_or(0)));
    } else {
        return {};
    }
    for (int number = 1; const auto& track : tracks)
        addServer(finding, facts, track, number++);
    finding.evidence.push_back(item(facts, u"dns.failedLookups"_s, lookups.unanswered, {},
        facts.evidence.now, u"Look-ups that failed in a row: %1"_s.arg(lookups.unanswered)));
    addPath(finding, facts);
    if (finding.sentence.size() > kLongestSentence) // addresses of IPv6 are long
        finding.sentence
            = u"The internet answers in %1, but DNS does not: %2 questions are lost."_s
                  .arg(inMs(pathMs(facts)))
                  .arg(tracks.empty() ? lookups.unanswered : tracks.front().unanswered);
    return finding;
}

std::optional<Finding> dnsSlow(const Facts& facts)
{
    if (!facts.isReached || hasLosses(facts)) // a question is sent again after seconds
        return {};
    const double path = pathMs(facts);
    const double limit = std::max(300 + 1.5 * path, 3 * facts.evidence.usual.lookup.value_or(0));
    std::optional<double> slow = slowestOfLastTwo(facts.evidence.lookups);
    for (const auto& track : serverTracks(facts)) {
        const auto& answers = track.server->answers;
        if (answers.size() < 2 || track.server != &facts.evidence.nameServers.front())
            continue;
        const auto& before = answers[answers.size() - 2].value;
        if (track.isFine && before.kind == Kind::Addresses && track.isAsked)
            slow = std::max(slow.value_or(0), std::min(*track.milliseconds, before.milliseconds));
    }
    if (slow.value_or(0) < limit)
        return {};
    Finding finding {.cause = Cause::DnsSlow,
        .certainty = 0.82,
        .severity = Severity::Poor,
        .sentence = u"Finding names (DNS) takes %1, though the internet answers in %2."_s.arg(
            inMs(*slow), inMs(path)),
        .advice = u"Set another DNS server in the system's network settings, such as 1.1.1.1 or "
                  "9.9.9.9."_s};
    finding.evidence.push_back(item(facts, u"dns.lookup"_s, *slow, u"ms"_s, facts.evidence.now,
        u"The last two look-ups took %1 or more"_s.arg(inMs(*slow))));
    addPath(finding, facts);
    return finding;
}

/// Many networks have reasons of their own for what they answer: names of the house, filters, a
/// cache of pages. That is nobody's fault as long as pages come. The page is asked for again when
/// such answers begin.
std::optional<Finding> dnsWrong(const Facts& facts)
{
    if (!facts.isReached || !facts.evidence.web || isWebFound(facts))
        return {};
    const auto& found = facts.evidence.lookupAddresses;
    const auto tracks = serverTracks(facts);
    // What one server of several denies, or a cache still knows, harms nobody yet.
    const bool isMissed = found.isEmpty() || facts.evidence.web->value == WebAnswer::NotResolved;
    const bool isDenied = facts.evidence.lookupNameUnknown
        || (isMissed && std::ranges::any_of(tracks, &ServerTrack::deniesName));
    const bool isBogusAnswer
        = !found.isEmpty() && std::ranges::none_of(found, isPublic) && !hasTrouble(facts);
    if (!isDenied && !isBogusAnswer)
        return {};
    const QString server = tracks.empty() ? u"DNS"_s : tracks.front().server->address;
    const int count = tracks.empty() ? 0 : int(tracks.front().server->answers.size());
    const int falseAnswers = std::max({1, count, trackOf(facts.evidence.lookups).unanswered});
    Finding finding {.cause = Cause::DnsWrong,
        .certainty = 0.92,
        .sentence = isBogusAnswer
            ? u"False answers from DNS (%1): a public name leads to %2 (internet: %3)."_s.arg(
                QString::number(falseAnswers), found.first(), inMs(pathMs(facts)))
            : u"False answers from DNS (%1): it knows no name (internet: %2)."_s.arg(
                QString::number(falseAnswers), inMs(pathMs(facts))),
        .advice = u"Set another DNS server in the system's network settings, such as 1.1.1.1 or "
                  "9.9.9.9. Do not type passwords until then."_s};
    finding.evidence.push_back(item(facts, u"dns.falseAnswers"_s, falseAnswers, {},
        facts.evidence.now, u"Answers of %1 that cannot be true"_s.arg(server)));
    addPath(finding, facts);
    return finding;
}

} // namespace netvane::verdict
