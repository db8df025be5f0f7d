#pragma once

#include "base/clock.h"

#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

class QObject;

namespace netvane::base {

/// Runs `work` on a thread of its own that nobody ever waits for, and `done` on the thread of
/// `owner`, the calling one, after it: at once or, with `clock`, `soon`; not once the owner is
/// gone. False when there is no thread or descriptor to be had; then neither runs.
[[nodiscard]] bool startDetached(
    QObject* owner, std::function<void()> work, std::function<void()> done, Clock* clock);

/// For a call that can hang and that nothing can interrupt, such as one of the resolver. A pool
/// would wait for it at the end of the program, and everything behind it would wait, too; this
/// thread just ends with the process. So `work` may hold and touch only what it owns or shares, no
/// part of Qt, no reference, nothing with static storage: it may come back when all of that is
/// gone. The value travels in memory that both threads share. The wake-up is an eventfd and not a
/// posted event, because there may be no application left to post it to.
template <typename Work, typename Deliver>
[[nodiscard]] bool runDetached(QObject* owner, Work work, Deliver deliver, Clock* clock = nullptr)
{
    const auto value = std::make_shared<std::optional<std::invoke_result_t<Work>>>();
    return startDetached(
        owner, [value, work = std::move(work)]() mutable { *value = work(); },
        [value, deliver = std::move(deliver)]() mutable { deliver(**value); }, clock);
}

} // namespace netvane::base
