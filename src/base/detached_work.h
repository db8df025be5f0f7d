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

/// For a call that may hang for ever and that nothing can interrupt, such as one of the resolver.
/// Runs `work` on a thread of its own and calls `deliver` with its result on the thread of `owner`,
/// which is the calling one; never once the owner is gone. False when there is no thread or
/// descriptor to be had; then neither runs. Nobody waits for the thread: it ends with the process
/// at the latest. So `work` may hold and touch only what it owns or shares, no part of Qt, no
/// reference, nothing with static storage: it may return when all of that is gone.
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
