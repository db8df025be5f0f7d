#pragma once

#include <QThreadPool>

namespace netvane::platform {

/// Where work goes that may wait. Results come back to their owner's thread with
/// `QtConcurrent::run(&queue, work).then(owner, deliver)`, which drops them when the owner is gone.
struct WorkQueues {
    QThreadPool userInitiated; ///< short reads whose answer somebody waits for
    QThreadPool utility; ///< work that may take its time
};

} // namespace netvane::platform
