#pragma once

#include "base/work_queues.h"

#include <QCoreApplication>

namespace netvane::test {

/// Waits until the work on `queue` has ended and its results are delivered.
inline void settle(base::WorkQueue& queue)
{
    for (int round = 0; round < 4; ++round) {
        queue.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace netvane::test
