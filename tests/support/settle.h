#pragma once

#include "base/work_queues.h"

#include <QCoreApplication>

namespace netvane::test {

/// Lets work on `queue` end and its results arrive, until nothing is left of either.
inline void settle(base::WorkQueue& queue)
{
    for (int round = 0; round < 4; ++round) {
        queue.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

} // namespace netvane::test
