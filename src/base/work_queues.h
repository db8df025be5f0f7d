#pragma once

#include <semaphore.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace netvane::base {

/// Threads that begin with it, stay to its end, and do in its order what is posted. Two things
/// speak against QThreadPool: where the system has no thread to give it loses the work, and it
/// wakes a thread while it holds the lock that this thread wants next, so that one job costs up to
/// three wake-ups of it.
class WorkQueue {
public:
    /// Ends the program with a word about it when there are no threads to be had.
    explicit WorkQueue(int threads = 1);
    /// Does what was posted, then ends the threads.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    /// Any thread. What `work` holds goes on the thread that did it.
    void post(std::function<void()> work);
    /// Blocks until nothing is waiting or under way.
    void waitForDone();

private:
    void serve();
    std::function<void()> next();

    sem_t m_posted {}; ///< sem_overview(7); released by `post` when it has let go of the lock
    std::mutex m_lock; ///< for the two below
    std::deque<std::function<void()>> m_waiting; ///< what cannot be called ends a thread
    std::size_t m_unfinished = 0; ///< waiting or under way
    std::condition_variable m_done;
    std::vector<std::thread> m_threads;
};

/// Where work goes that may wait; see `runInBackground`.
struct WorkQueues {
    /// Short reads whose answer somebody waits for; two of its threads may be with buses that are
    /// slow to answer.
    WorkQueue userInitiated {3};
    WorkQueue utility {2}; ///< work that may take its time
};

} // namespace netvane::base
