#pragma once

#include "verdict/facts.h"
#include "verdict/verdict.h"

namespace netvane::verdict {

/// What a rule found. Its sentence quotes at least two of the values that it goes by.
struct Finding {
    Cause cause = Cause::Unsure;
    double certainty = 0;
    Severity severity = Severity::Broken;
    QString sentence;
    QString advice;
    std::vector<EvidenceItem> evidence;
};

/// Absent where the rule does not apply. Each rule stands for itself: whether another one explains
/// the same is settled by their certainty.
using Rule = std::optional<Finding> (*)(const Facts& facts);

// rules_system.cpp: what this computer lacks.
std::optional<Finding> noAdapter(const Facts& facts);
std::optional<Finding> radioOff(const Facts& facts);
std::optional<Finding> noAddress(const Facts& facts);
std::optional<Finding> noRoute(const Facts& facts);
std::optional<Finding> vpnDown(const Facts& facts);
// rules_link.cpp: there is no Wi-Fi link, or none that lasts.
std::optional<Finding> noLink(const Facts& facts); ///< with its reason: five causes
std::optional<Finding> unsteadyLink(const Facts& facts);
// rules_radio.cpp: the way to the access point.
std::optional<Finding> weakSignal(const Facts& facts);
std::optional<Finding> airLossy(const Facts& facts);
std::optional<Finding> airBusy(const Facts& facts);
std::optional<Finding> powerSave(const Facts& facts);
std::optional<Finding> scanning(const Facts& facts);
std::optional<Finding> roaming(const Facts& facts);
// rules_path.cpp: router and line.
std::optional<Finding> routerDead(const Facts& facts);
std::optional<Finding> routerSlow(const Facts& facts);
std::optional<Finding> routerLossy(const Facts& facts);
std::optional<Finding> lineDown(const Facts& facts);
std::optional<Finding> lineSlow(const Facts& facts);
std::optional<Finding> lineLossy(const Facts& facts);
std::optional<Finding> lagUnderLoad(const Facts& facts);
// rules_names.cpp: name servers.
std::optional<Finding> dnsDead(const Facts& facts);
std::optional<Finding> dnsSlow(const Facts& facts);
std::optional<Finding> dnsWrong(const Facts& facts);
// rules_internet.cpp: what lies behind the line, and that all is well.
std::optional<Finding> portal(const Facts& facts);
std::optional<Finding> mtu(const Facts& facts);
std::optional<Finding> ipv6Broken(const Facts& facts);
std::optional<Finding> targetUnreachable(const Facts& facts);
std::optional<Finding> healthy(const Facts& facts);

// For the rules.

/// "4 ms", "0.4 ms", "1200 ms".
QString inMs(double milliseconds);
/// A name from outside, short enough for a sentence.
QString inSentence(const QString& name);
EvidenceItem item(const Facts& facts, const QString& name, double value, const QString& unit,
    TimePoint at, const QString& text);
/// The time to a place as a piece of evidence, `name` as "router.latency"; nothing where it was not
/// measured.
void addLatency(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Track& track);
/// Likewise the questions to a place in a row without an answer.
void addSilence(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Track& track);
void addLoss(Finding& finding, const Facts& facts, const QString& name, const QString& place,
    const Loss& loss);

} // namespace netvane::verdict
