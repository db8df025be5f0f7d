#include "platform/work_queues.h"

#include <QSemaphore>

#include <chrono>
#include <memory>

namespace netvane::platform {
namespace {

/// Far above what the start of a thread takes on a machine that is busy.
constexpr std::chrono::milliseconds kStartLimit {10'000};

/// Work that keeps its thread busy until all are there.
struct RollCall {
    QSemaphore present;
    QSemaphore dismissed;
};

} // namespace

WorkQueue::WorkQueue(int threads)
{
    setMaxThreadCount(threads);
    setExpiryTimeout(-1);
    const auto roll = std::make_shared<RollCall>();
    for (int i = 0; i < threads; ++i)
        start([roll] {
            roll->present.release();
            roll->dismissed.acquire();
        });
    const bool isComplete = roll->present.tryAcquire(threads, int(kStartLimit.count()));
    roll->dismissed.release(threads);
    // As the network thread does: a process that gets no threads when it begins gets nowhere.
    if (!isComplete)
        qFatal("No threads for work in the background");
}

} // namespace netvane::platform
