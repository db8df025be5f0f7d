#pragma once

#include <QString>

namespace netvane::base {

/// `value` with exactly `decimals` digits behind a full stop, as C's "%.*f" writes it in any
/// language: exact halves go to the even neighbour.
QString fixedDecimal(double value, int decimals);

} // namespace netvane::base
