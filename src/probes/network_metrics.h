#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace netvane::probes {

/// One latency measurement towards a target.
struct NetworkMetrics {
    std::chrono::system_clock::time_point timestamp;
    std::optional<double> ping; ///< round trip in ms; absent when the probe failed
    std::optional<double> jitter; ///< mean difference of neighbouring round trips in ms
    std::optional<double> packetLoss; ///< of the last probes, in percent
    QString target; ///< the target's label, not its address

    /// Identity in lists: seconds since 1970 in the shortest text that reads back the same, then
    /// the target.
    QString id() const;
    /// The quality of a telephone call over this path: mean opinion score, 1.0 to 4.5, by a
    /// simplified E-model (ITU-T G.107). Absent without `ping`.
    std::optional<double> mosScore() const;
    QString mosQuality() const;

    bool operator==(const NetworkMetrics&) const = default;
};

/// The word for a score: "Excellent" from 4.3, "Good" from 4.0, "Fair" from 3.6, "Poor" from 3.1,
/// below it "Bad"; "Unknown" without one.
QString mosQuality(std::optional<double> mosScore);

} // namespace netvane::probes
