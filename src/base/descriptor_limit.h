#pragma once

#include <QString>

#include <optional>

namespace netvane::base {

/// Sees to it that this process may have `needed` file descriptors open at once (RLIMIT_NOFILE),
/// and raises its limit as far as the system lets it. Absent when that is so, else a sentence for
/// the user. To be called before Qt begins its work: Qt, GLib and libdbus end the process by a
/// signal where they get no descriptor.
[[nodiscard]] std::optional<QString> descriptorProblem(unsigned needed);

} // namespace netvane::base
