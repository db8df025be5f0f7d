#pragma once

#include "base/file_descriptor.h"

#include <atomic>
#include <functional>
#include <vector>

namespace netvane::net {

class ConnectionWatcher;

/// Hands tasks to a thread that waits for descriptors. There is nothing to lock: the letters form a
/// list, and all that is shared is the word that points to its newest. A sender swaps that for its
/// own letter, the reader for nothing, which gives it the whole list. No send ever waits or fails,
/// not even one of the reader to itself. What nobody takes goes with the box.
class Mailbox {
public:
    using Task = std::function<void(ConnectionWatcher&)>;

    Mailbox();
    ~Mailbox();
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    /// Any thread.
    void post(Task task);
    /// As `post`, but wakes nobody: for what the reader need not know before it wakes up anyway.
    void leave(Task task);
    /// The tasks so far in their order. Reading thread.
    std::vector<Task> take();
    /// Readable while there are tasks.
    int descriptor() const { return m_bell.get(); }

private:
    struct Letter {
        Task task;
        Letter* older = nullptr;
    };

    std::atomic<Letter*> m_newest = nullptr;
    base::FileDescriptor m_bell; ///< an eventfd(2)
};

} // namespace netvane::net
