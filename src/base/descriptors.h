#pragma once

#include <QByteArrayView>
#include <QString>

namespace netvane::base {

/// Makes sure that `needed` more files can be open at once, for which this process's limit is
/// raised as far as it may be (RLIMIT_NOFILE, getrlimit(2)). To be called before there is an
/// application: Qt and GLib abort where a file is refused to them. Returns what is wrong, in words
/// for the user, and nothing when all is well.
[[nodiscard]] QString provideDescriptors(int needed);

/// Writes all of `bytes`, waiting where the reader is slow, also on a descriptor that does not
/// block. Returns the error (errno(3)), 0 when there was none.
[[nodiscard]] int writeAll(int descriptor, QByteArrayView bytes);

} // namespace netvane::base
