#include "verdict/judge.h"

#include "verdict/chain.h"
#include "verdict/rules.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

constexpr std::array<Rule, 28> kRules = {noAdapter, radioOff, noAddress, noRoute, vpnDown, noLink,
    unsteadyLink, weakSignal, airLossy, airBusy, powerSave, scanning, roaming, routerDead,
    routerSlow, routerLossy, lineDown, lineSlow, lineLossy, lagUnderLoad, dnsDead, dnsSlow,
    dnsWrong, portal, mtu, ipv6Broken, targetUnreachable, healthy};
constexpr size_t kMostOthers = 4;

Finding unsure(const Facts& facts)
{
    const bool isNew = facts.internet.asked < 2;
    Finding finding {.cause = Cause::Unsure,
        .certainty = 0.3,
        .severity = Severity::Notice,
        .sentence = isNew
            ? u"Looking at the connection…"_s
            : u"Not sure yet: %1 of the last %2 packets to the internet were answered."_s
                  .arg(std::max(0, facts.internet.asked - facts.internet.unanswered))
                  .arg(facts.internet.asked),
        .advice = isNew ? QString() : u"Wait a few seconds."_s};
    addLatency(finding, facts, u"router.latency"_s, u"The router"_s, facts.near());
    addSilence(finding, facts, u"internet.unanswered"_s, u"The internet"_s, facts.internet);
    return finding;
}

} // namespace

Verdict judge(const Evidence& evidence)
{
    const Facts facts(evidence);
    std::vector<Finding> findings;
    const bool isBlind = facts.lacksLink(); // for all that lies behind the radio
    for (const auto rule : kRules) {
        auto finding = rule(facts);
        if (!finding)
            continue;
        const auto segment = segmentOf(finding->cause);
        if (!isBlind || segment == Segment::System || segment == Segment::Radio)
            findings.push_back(std::move(*finding));
    }
    std::ranges::stable_sort(findings, std::ranges::greater {}, &Finding::certainty);
    constexpr double kEnough = 0.4;
    if (findings.empty() || findings.front().certainty < kEnough)
        findings.insert(findings.begin(), unsure(facts));
    auto& first = findings.front();
    Verdict verdict {.cause = first.cause,
        .severity = first.severity,
        .certainty = first.certainty,
        .sentence = first.sentence.left(kLongestSentence),
        .advice = first.advice,
        .evidence = std::move(first.evidence),
        .chain = chainOf(facts, first.cause, first.severity)};
    for (size_t each = 1; each < std::min(findings.size(), kMostOthers + 1); ++each)
        verdict.others.push_back({findings[each].cause, findings[each].certainty});
    return verdict;
}

} // namespace netvane::verdict
