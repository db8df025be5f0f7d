#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace netvane::probes {

/// Adds the newest entry at the end and drops the oldest one beyond `bound`.
template <typename Value>
void appendBounded(std::vector<Value>& list, Value value, size_t bound)
{
    list.push_back(std::move(value));
    if (list.size() > bound)
        list.erase(list.begin());
}

} // namespace netvane::probes
