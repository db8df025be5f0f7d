#include "base/detached_work.h"

#include "base/detached_thread.h"
#include "base/file_descriptor.h"

#include <QSocketNotifier>

#include <sys/eventfd.h>

#include <atomic>

namespace netvane::base {
namespace {

/// Shared by the two threads; the last one closes the descriptor.
class Bell {
public:
    bool isValid() const { return m_descriptor.isOpen(); }
    int descriptor() const { return m_descriptor.get(); }

    void ring()
    {
        m_rang.store(true, std::memory_order_release);
        (void)::eventfd_write(m_descriptor.get(), 1); // the first one always has room
    }
    /// What was written before `ring` can be read once this is true.
    bool rang() const { return m_rang.load(std::memory_order_acquire); }

private:
    FileDescriptor m_descriptor {::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::atomic<bool> m_rang = false;
};

} // namespace

bool startDetached(
    QObject* owner, std::function<void()> work, std::function<void()> done, Clock* clock)
{
    const auto bell = std::make_shared<Bell>();
    if (!bell->isValid() || !startDetachedThread([bell, work = std::move(work)]() mutable {
            work();
            // What it holds goes here and not some time after the owner has the value.
            work = nullptr;
            bell->ring();
        }))
        return false;
    auto* notifier = new QSocketNotifier(bell->descriptor(), QSocketNotifier::Read, owner);
    QObject::connect(
        notifier, &QSocketNotifier::activated, owner, [notifier, bell, done = std::move(done)] {
            if (!bell->rang())
                return;
            notifier->setEnabled(false);
            notifier->deleteLater();
            done();
        });
    if (clock) {
        notifier->setEnabled(false);
        clock->soon(notifier, [notifier] { notifier->setEnabled(true); });
    }
    return true;
}

} // namespace netvane::base
