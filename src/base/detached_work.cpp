#include "base/detached_work.h"

#include "base/file_descriptor.h"

#include <QSocketNotifier>

#include <sys/eventfd.h>

#include <atomic>
#include <system_error>
#include <thread>

namespace netvane::base {
namespace {

/// Signals one thread that another has finished; the last user closes the descriptor. It is an
/// eventfd and not a posted event, because the application object may no longer exist.
class DoneSignal {
public:
    bool isValid() const { return m_descriptor.isOpen(); }
    int descriptor() const { return m_descriptor.get(); }

    void set()
    {
        m_isSet.store(true, std::memory_order_release);
        (void)::eventfd_write(m_descriptor.get(), 1); // the first write never blocks
    }
    /// Memory that was written before `set` may be read once this is true.
    bool isSet() const { return m_isSet.load(std::memory_order_acquire); }

private:
    FileDescriptor m_descriptor {::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::atomic<bool> m_isSet = false;
};

bool startThread(std::function<void()> work)
{
    try {
        std::thread(std::move(work)).detach();
        return true;
    } catch (const std::system_error&) {
        return false; // std::thread has no other way to report that there are too many
    }
}

} // namespace

bool startDetached(QObject* owner, std::function<void()> work, std::function<void()> done,
    Clock& clock, Delivery delivery)
{
    const auto signal = std::make_shared<DoneSignal>();
    if (!signal->isValid() || !startThread([signal, work = std::move(work)]() mutable {
            work();
            work = nullptr; // its captures are destroyed before the owner gets the value
            signal->set();
        }))
        return false;
    auto* notifier = new QSocketNotifier(signal->descriptor(), QSocketNotifier::Read, owner);
    QObject::connect(
        notifier, &QSocketNotifier::activated, owner, [notifier, signal, done = std::move(done)] {
            if (!signal->isSet())
                return;
            notifier->setEnabled(false);
            notifier->deleteLater();
            done();
        });
    if (delivery == Delivery::Batched) {
        notifier->setEnabled(false);
        clock.soon(notifier, [notifier] { notifier->setEnabled(true); });
    }
    return true;
}

} // namespace netvane::base
