#pragma once

#include "base/clock.h"
#include "base/work_queues.h"

#include <QFutureWatcher>
#include <QPromise>

#include <memory>
#include <type_traits>

namespace netvane::base {

/// Runs `work` on `queue` and hands what it returns to `deliver` on the thread of `owner`, which is
/// the calling one; nothing is delivered once the owner is gone. Unlike `QFuture::then(owner,
/// ...)`, which in Qt 6.4 looks at the owner from the thread that did the work, this lets the owner
/// go at any moment. With `clock` it is delivered `soon` and not at once.
template <typename Work, typename Deliver>
void runInBackground(
    WorkQueue& queue, QObject* owner, Work work, Deliver deliver, Clock* clock = nullptr)
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
    const auto listen = [watcher, future = promise->future()] { watcher->setFuture(future); };
    queue.post([promise, work = std::move(work)]() mutable {
        promise->addResult(work());
        promise->finish();
    });
    if (clock)
        clock->soon(watcher, listen);
    else
        listen();
}

} // namespace netvane::base
