#pragma once

#include "verdict/evidence.h"
#include "verdict/verdict.h"

#include <QJsonObject>
#include <QStringList>

#include <chrono>

namespace netvane::report {

/// RFC 3339 in UTC, with milliseconds.
QString timeText(std::chrono::system_clock::time_point time);
/// To one decimal place.
double rounded(double value);

/// A verdict and what it rests on, as docs/netvane-report.schema.json describes it. What is absent
/// is left out. `now` is the wall clock at `evidence.now`.
QJsonObject verdictObject(const verdict::Verdict& verdict, const verdict::Evidence& evidence,
    std::chrono::system_clock::time_point now);

/// Sentence, advice and evidence for people, in lines.
QString verdictText(const verdict::Verdict& verdict);

/// For node_exporter's textfile collector, in Prometheus's text format.
QString prometheusText(const verdict::Verdict& verdict, const verdict::Evidence& evidence);

/// What a redacted report does not name, and what stands in its place: names of networks, hardware
/// addresses, addresses.
QList<std::pair<QString, QString>> secretsOf(const verdict::Evidence& evidence);
QString redacted(QString text, const verdict::Evidence& evidence);

/// The status that `--verdict` ends with: 0 for healthy, one number a segment, 20 for unsure.
int exitStatus(verdict::Cause cause);

} // namespace netvane::report
