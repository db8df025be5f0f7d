#pragma once

#include <QByteArrayView>

namespace netvane::base {

/// Writes all of `bytes` (write(2)), waiting where the reader is slow, also on a descriptor that
/// does not block. Returns the error (errno(3)), 0 when there was none.
[[nodiscard]] int writeAll(int descriptor, QByteArrayView bytes);

} // namespace netvane::base
