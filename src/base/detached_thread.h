#pragma once

#include <functional>

namespace netvane::base {

/// Runs `work` on a thread that nobody waits for: a call of the resolver can neither be bounded nor
/// interrupted, and this thread just ends with the process. So `work` touches only what it owns or
/// shares. False when there is no thread to be had; then it does not run.
[[nodiscard]] bool startDetachedThread(std::function<void()> work);

} // namespace netvane::base
