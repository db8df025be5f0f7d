#pragma once

#include <QString>

#include <chrono>

namespace netvane::base {

/// `value` with exactly `decimals` digits after a full stop, as C's "%.*f" writes it in any
/// language: exact halves are rounded to the even neighbour.
QString fixedDecimal(double value, int decimals);

/// Seconds since 1 January 1970 (UTC) as the shortest decimal text that reads back to the same
/// double: 1700000000.5. No exponent for any date that the program handles. This is an identity,
/// not a text for people.
QString shortestDecimal(std::chrono::system_clock::time_point time);

} // namespace netvane::base
