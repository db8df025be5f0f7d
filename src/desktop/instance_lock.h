#pragma once

#include "base/file_descriptor.h"
#include "platform/instance_claim.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace netvane::desktop {

/// The claim to be the one running copy on a display, which needs no bus. A FIFO in the user's
/// runtime folder (XDG_RUNTIME_DIR) bears the display's name. The running copy holds it locked
/// (flock(2)), so it is free again however that copy ends. Others write a line into it. Main
/// thread.
class InstanceLock : public QObject {
    Q_OBJECT

public:
    /// False when another copy has the lock; true also where there is no folder to have it in.
    bool take();
    /// To the copy that has it: the program was started again. After `take` failed.
    void tellOther(const platform::StartRequest& request);

Q_SIGNALS:
    /// In the copy that has the lock, with the last request of those that came.
    void told(const netvane::platform::StartRequest& request);

private:
    void read();

    base::FileDescriptor m_fifo;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace netvane::desktop
