#pragma once

#include <semaphore.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace netvane::base {

/// A fixed number of threads that run the posted work in its order. QThreadPool has two faults
/// here: it loses the work if the system cannot create a thread, and it wakes a thread while it
/// holds the lock that this thread needs next, so that one job costs up to three wake-ups.
class WorkQueue {
public:
    /// Ends the program with a message if the threads cannot be created.
    explicit WorkQueue(int threads = 1);
    /// Runs the posted work, then ends the threads.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    /// Any thread. `work` and its captures are destroyed on the thread that ran it.
    void post(std::function<void()> work);
    /// Blocks until no work is waiting or running.
    void waitForDone();

private:
    void serve();
    std::function<void()> next();

    sem_t m_posted {}; ///< sem_overview(7); `post` increments it after it released the lock
    std::mutex m_lock; ///< for the two below
    std::deque<std::function<void()>> m_waiting; ///< an empty function ends a thread
    std::size_t m_unfinished = 0; ///< waiting or running
    std::condition_variable m_done;
    std::vector<std::thread> m_threads;
};

/// The queues for work in the background; see `runInBackground`.
struct WorkQueues {
    /// Short reads whose result is needed soon. Two of its threads may be blocked by message buses
    /// that are slow to answer.
    WorkQueue userInitiated {3};
    WorkQueue utility {2}; ///< work that may take long
};

} // namespace netvane::base
