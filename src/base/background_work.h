#pragma once

#include "base/clock.h"
#include "base/work_queues.h"

#include <QFutureWatcher>
#include <QPromise>

#include <memory>
#include <type_traits>

namespace netvane::base {

/// Starts `work` as `runInBackground` does and returns a function. The result is delivered after
/// this function was called on the thread of `owner`.
template <typename Work, typename Deliver>
[[nodiscard]] auto startInBackground(WorkQueue& queue, QObject* owner, Work work, Deliver deliver)
{
    using Value = std::invoke_result_t<Work>;
    auto* watcher = new QFutureWatcher<Value>(owner);
    QObject::connect(watcher, &QFutureWatcher<Value>::finished, owner,
        [watcher, deliver = std::move(deliver)]() mutable {
            watcher->deleteLater();
            deliver(watcher->result());
        });
    const auto promise = std::make_shared<QPromise<Value>>();
    promise->start();
    queue.post([promise, work = std::move(work)]() mutable {
        promise->addResult(work());
        promise->finish();
    });
    return [watcher, future = promise->future()] { watcher->setFuture(future); };
}

/// Runs `work` on a thread of `queue` and calls `deliver` with its result on the thread of `owner`,
/// which is the calling one; never after the owner is destroyed. For work that ends in bounded
/// time; `runDetached` is for calls that may block for ever. `QFuture::then(owner, ...)` would be
/// shorter, but in Qt 6.4 it accesses the owner from the worker thread, while the owner may be
/// destroyed.
template <typename Work, typename Deliver>
void runInBackground(WorkQueue& queue, QObject* owner, Work work, Deliver deliver)
{
    startInBackground(queue, owner, std::move(work), std::move(deliver))();
}

/// When a result is delivered, and the clock that batches results.
struct DeliverySchedule {
    Clock& clock;
    Delivery delivery;
};

/// The same, delivered at the given time.
template <typename Work, typename Deliver>
void runInBackground(
    WorkQueue& queue, QObject* owner, Work work, Deliver deliver, const DeliverySchedule& schedule)
{
    const auto listen = startInBackground(queue, owner, std::move(work), std::move(deliver));
    if (schedule.delivery == Delivery::Batched)
        schedule.clock.soon(owner, listen);
    else
        listen();
}

} // namespace netvane::base
