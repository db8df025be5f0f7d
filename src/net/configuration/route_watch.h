#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "platform/route_monitor.h"

#include <memory>

class QSocketNotifier;

namespace netvane::net {

/// The kernel's own news (rtnetlink(7), multicast): default IPv4 routes that come and go, and what
/// takes routes away without a word about them, which is a link that goes down and an address that
/// is removed. A filter in the kernel holds back all else, such as the news of every Wi-Fi scan.
class RouteWatch final : public platform::RouteMonitor {
    Q_OBJECT

public:
    /// `clock` outlives this. Without a descriptor no change is told.
    explicit RouteWatch(base::Clock& clock);
    ~RouteWatch() override;

private:
    void changesBegin();
    void changesAreOver();

    base::Clock& m_clock;
    const base::FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< not while changes are waited for
    std::unique_ptr<base::Timer> m_settling;
};

} // namespace netvane::net
