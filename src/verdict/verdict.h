#pragma once

#include "verdict/cause.h"

#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace netvane::verdict {

/// One value that a verdict went by.
struct EvidenceItem {
    QString name; ///< "line.loss"
    double value = 0;
    QString unit; ///< "%", "ms", "dBm", "Mbps", "packets"; may be empty
    double ageSeconds = 0;
    QString text; ///< a sentence for people, with the value in it

    bool operator==(const EvidenceItem&) const = default;
};

/// How far one link of the chain Wi-Fi, router, line, internet, DNS is from working.
enum class LinkState {
    Unknown,
    Fine,
    Bad,
    Broken,
    NotReached, ///< a link before it is broken
};

/// One link of the chain, as a person sees it.
struct ChainLink {
    QString name; ///< "Wi-Fi" ("Cable" where the route goes by one), "Router", "Line", ...
    LinkState state = LinkState::Unknown;
    QString word; ///< "fine", "loses packets", "not reached"
    QString figure; ///< "-52 dBm", "4 ms", "12 % lost"; may be empty

    bool operator==(const ChainLink&) const = default;
};

struct Candidate {
    Cause cause = Cause::Unsure;
    double certainty = 0; ///< 0 to 1

    bool operator==(const Candidate&) const = default;
};

struct Verdict {
    Cause cause = Cause::Unsure;
    Severity severity = Severity::Notice;
    double certainty = 0; ///< 0 to 1
    std::chrono::system_clock::time_point since; ///< when this cause became the first
    QString sentence; ///< at most `kLongestSentence` characters, plain text
    QString advice; ///< may be empty
    std::vector<EvidenceItem> evidence;
    std::vector<Candidate> others; ///< causes that were considered, the likelier first
    std::vector<ChainLink> chain; ///< five links

    bool operator==(const Verdict&) const = default;
};
inline constexpr qsizetype kLongestSentence = 90;

} // namespace netvane::verdict
