#include "base/work_queues.h"

#include <QtGlobal>

#include <system_error>

namespace netvane::base {

WorkQueue::WorkQueue(int threads)
{
    ::sem_init(&m_posted, 0, 0);
    try {
        while (int(m_threads.size()) < threads)
            m_threads.emplace_back([this] { serve(); });
    } catch (const std::system_error&) {
        // The program cannot work without threads.
        qFatal("No threads for work in the background");
    }
}

WorkQueue::~WorkQueue()
{
    for (std::size_t i = 0; i < m_threads.size(); ++i)
        post({});
    for (auto& thread : m_threads)
        thread.join();
    ::sem_destroy(&m_posted);
}

void WorkQueue::post(std::function<void()> work)
{
    {
        const std::lock_guard hold(m_lock);
        m_waiting.push_back(std::move(work));
        ++m_unfinished;
    }
    ::sem_post(&m_posted);
}

void WorkQueue::waitForDone()
{
    std::unique_lock hold(m_lock);
    m_done.wait(hold, [this] { return m_unfinished == 0; });
}

void WorkQueue::serve()
{
    while (auto work = next()) {
        work();
        work = nullptr; // before `waitForDone` can return
        const std::lock_guard hold(m_lock);
        if (--m_unfinished == 0)
            m_done.notify_all();
    }
}

std::function<void()> WorkQueue::next()
{
    while (::sem_wait(&m_posted) != 0) { } // interrupted by a signal
    const std::lock_guard hold(m_lock);
    auto work = std::move(m_waiting.front());
    m_waiting.pop_front();
    return work;
}

} // namespace netvane::base
