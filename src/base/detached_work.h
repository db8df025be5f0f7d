#pragma once

#include "base/clock.h"

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

class QObject;

namespace netvane::base {

/// Runs `work` on a new thread and then `done` on the thread of `owner`; see `runDetached`.
[[nodiscard]] bool startDetached(QObject* owner, std::function<void()> work,
    std::function<void()> done, Clock& clock, Delivery delivery);

/// For a call that may block for ever and that nothing can interrupt, such as getaddrinfo(3). A
/// queue would lose a thread to each such call, and the end of the program would wait for it. Runs
/// `work` on a new thread and calls `deliver` with its result on the thread of `owner`, which is
/// the calling one; never after the owner is destroyed. False if the system has no free thread or
/// descriptor; then neither runs. Nothing waits for the thread; it ends with the process at the
/// latest. So `work` must use only what it owns or shares: no part of Qt, no reference, nothing
/// with static storage, since all of these may be destroyed before it returns.
template <typename Work, typename Deliver>
[[nodiscard]] bool runDetached(
    QObject* owner, Work work, Deliver deliver, Clock& clock, Delivery delivery)
{
    const auto value = std::make_shared<std::optional<std::invoke_result_t<Work>>>();
    return startDetached(
        owner, [value, work = std::move(work)]() mutable { *value = work(); },
        [value, deliver = std::move(deliver)]() mutable { deliver(**value); }, clock, delivery);
}

} // namespace netvane::base
