#pragma once

#include "verdict/verdict.h"

#include <QDateTime>
#include <QString>

#include <chrono>

namespace netvane::insights {

QDateTime localTime(std::chrono::system_clock::time_point time);
/// A cause as one of several that were considered: "The router does not answer".
QString causeName(verdict::Cause cause);
/// "likely", "possible" or "unlikely", for a certainty from 0 to 1.
QString certaintyWord(double certainty);
/// The value with its unit: "2 ms", "-82 dBm", "1 packet", "0". At most one decimal.
QString figureText(const verdict::EvidenceItem& item);

/// Everything about a verdict as plain text: what is wrong, what to do, since when (local time),
/// the chain, the evidence and the other causes. `passed` is how long ago the evidence was judged,
/// which its ages do not contain. Ends with a line break.
QString verdictText(const verdict::Verdict& verdict, std::chrono::duration<double> passed);

} // namespace netvane::insights
