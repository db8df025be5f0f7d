#include "net/mailbox.h"

#include <QtGlobal>

#include <sys/eventfd.h>

#include <algorithm>
#include <memory>

namespace netvane::net {

Mailbox::Mailbox()
    : m_bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // As the event loop of the application itself does: a process that has no descriptor left when
    // it begins gets nowhere.
    if (!m_bell.isOpen())
        qFatal("No descriptor for connections");
}

Mailbox::~Mailbox()
{
    take();
}

void Mailbox::post(Task task)
{
    leave(std::move(task));
    ::eventfd_write(m_bell.get(), 1);
}

void Mailbox::leave(Task task)
{
    auto* letter = new Letter {std::move(task), m_newest.load(std::memory_order_relaxed)};
    while (!m_newest.compare_exchange_weak(
        letter->older, letter, std::memory_order_release, std::memory_order_relaxed)) { }
}

std::vector<Mailbox::Task> Mailbox::take()
{
    // The bell first: a letter that comes after it rings again.
    eventfd_t rings = 0;
    ::eventfd_read(m_bell.get(), &rings);
    std::vector<Task> tasks;
    for (auto* newest = m_newest.exchange(nullptr, std::memory_order_acquire); newest;) {
        const std::unique_ptr<Letter> letter(newest);
        tasks.push_back(std::move(letter->task));
        newest = letter->older;
    }
    std::ranges::reverse(tasks);
    return tasks;
}

} // namespace netvane::net
