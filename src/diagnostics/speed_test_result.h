#pragma once

#include <QString>
#include <QUuid>

#include <chrono>
#include <optional>

namespace netvane::diagnostics {

/// What one speed test found. The round trips are those that the router's latency probe had
/// published last at three moments of the test; it is asked once more while the download runs.
struct SpeedTestResult {
    QUuid id;
    /// When the upload had ended, in whole microseconds, so that it survives being stored.
    std::chrono::system_clock::time_point timestamp;
    std::optional<double> downloadSpeed; ///< Mbps (10^6 bit/s); absent when the download failed
    std::optional<double> uploadSpeed; ///< Mbps; absent when the upload failed
    std::optional<double> pingBefore; ///< ms, before the test
    std::optional<double> pingDuring; ///< ms, after the download; lacking that, `pingAfter`
    std::optional<double> pingAfter; ///< ms, after the upload
    bool isRunning = false; ///< never true in a result of ours

    /// Nothing could be measured in either direction.
    bool hasFailed() const { return !downloadSpeed && !uploadSpeed; }
    /// The round trip under load as a multiple of the one before. Absent without both, and when
    /// the router answered within twice the time: that is no lag.
    std::optional<double> riseUnderLoad() const;
    /// A sentence for the user about that rise.
    std::optional<QString> lagUnderLoadMessage() const;

    bool operator==(const SpeedTestResult&) const = default;
};

} // namespace netvane::diagnostics
