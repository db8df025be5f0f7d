#pragma once

#include "verdict/verdict.h"

#include <QDateTime>
#include <QString>

#include <chrono>
#include <vector>

namespace netvane::insights {

QDateTime localTime(std::chrono::system_clock::time_point time);

/// "The router does not answer"
QString causeName(verdict::Cause cause);

/// A cause that was considered beside that of a verdict.
struct ConsideredCause {
    QString name; ///< "The router does not answer"
    QString certainty; ///< "possible", "less likely" or "unlikely"
};
/// The likelier first. That all is well is no cause.
std::vector<ConsideredCause> consideredCauses(const verdict::Verdict& verdict);
/// The value with its unit: "2 ms", "-82 dBm", "1 packet", "0". At most one decimal.
QString figureText(const verdict::EvidenceItem& item);

/// Everything about a verdict as plain text: what is wrong, what to do, since when (local time),
/// the chain, the evidence and the other causes. `passed` is how long ago the evidence was judged,
/// which its ages do not contain. Ends with a line break.
QString verdictText(const verdict::Verdict& verdict, std::chrono::duration<double> passed);

} // namespace netvane::insights
