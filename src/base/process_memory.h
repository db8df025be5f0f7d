#pragma once

#include <cstdint>
#include <optional>

namespace netvane::base {

/// The resident set of this process in bytes (second field of /proc/self/statm); absent when the
/// kernel does not tell. Any thread.
std::optional<std::uint64_t> residentBytes();

} // namespace netvane::base
