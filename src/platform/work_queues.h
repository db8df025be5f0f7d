#pragma once

#include <QThreadPool>

namespace netvane::platform {

/// Where work goes that may wait; see `runInBackground`.
struct WorkQueues {
    QThreadPool userInitiated; ///< short reads whose answer somebody waits for
    QThreadPool utility; ///< work that may take its time
};

} // namespace netvane::platform
