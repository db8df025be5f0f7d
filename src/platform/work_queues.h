#pragma once

#include <QThreadPool>

namespace netvane::platform {

/// A pool whose threads begin with it and stay to its end. A plain QThreadPool makes them when
/// there is work: where the system has no thread to give at that moment, Qt loses the work, and the
/// pool waits for it for ever when it goes.
class WorkQueue : public QThreadPool {
public:
    /// Ends the program with a word about it when there are no threads to be had.
    explicit WorkQueue(int threads);
};

/// Where work goes that may wait; see `runInBackground`.
struct WorkQueues {
    /// Short reads whose answer somebody waits for; two of its threads may be with buses that are
    /// slow to answer.
    WorkQueue userInitiated {3};
    WorkQueue utility {2}; ///< work that may take its time
};

} // namespace netvane::platform
