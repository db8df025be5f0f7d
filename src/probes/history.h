#pragma once

#include <chrono>
#include <cstddef>
#include <utility>
#include <vector>

namespace netvane::probes {

/// One sample of a series that a graph draws.
struct MetricDataPoint {
    std::chrono::system_clock::time_point timestamp;
    double value = 0; ///< in the unit of its series: ms, percent, Mbps, dBm

    bool operator==(const MetricDataPoint&) const = default;
};

/// Adds the newest entry at the end and drops the oldest one beyond `bound`.
template <typename Value>
void appendBounded(std::vector<Value>& list, Value value, size_t bound)
{
    list.push_back(std::move(value));
    if (list.size() > bound)
        list.erase(list.begin());
}

} // namespace netvane::probes
