#pragma once

#include <chrono>

namespace netvane::probes {

/// One sample of a series that a graph draws.
struct MetricDataPoint {
    std::chrono::system_clock::time_point timestamp;
    double value = 0; ///< in the unit of its series: ms, percent, Mbps, dBm

    bool operator==(const MetricDataPoint&) const = default;
};

} // namespace netvane::probes
