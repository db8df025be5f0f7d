#pragma once

#include <QString>

#include <chrono>

namespace netvane::base {

/// Seconds since 1 January 1970 (UTC), fractions included.
double secondsSince1970(std::chrono::system_clock::time_point time);

/// The same as the shortest decimal text that reads back to the same double, with no exponent for
/// any date of ours: 1700000000.5. An identity, not for people.
QString shortestDecimal(std::chrono::system_clock::time_point time);

} // namespace netvane::base
