#pragma once

#include "base/clock.h"
#include "base/work_queues.h"
#include "netlink/generic_events.h"
#include "radio/radio_events.h"

#include <memory>
#include <optional>

class QSocketNotifier;

namespace netvane::radio {

/// nl80211's multicast messages, by a filter in the kernel only those that matter here. Where
/// nl80211 is not there yet, or is loaded again, it is followed once it registers (nlctrl,
/// multicast group "notify").
class LinuxRadioMonitor final : public platform::RadioMonitor {
    Q_OBJECT

public:
    /// Begins to listen in the background. Clock and queue outlive this.
    LinuxRadioMonitor(base::Clock& clock, base::WorkQueue& queue);
    ~LinuxRadioMonitor() override;

private:
    struct Sources;

    void listen();
    void follow(std::shared_ptr<Sources> sources);
    void receive();
    void receiveFamilies();

    base::Clock& m_clock;
    base::WorkQueue& m_queue;
    RadioEventReader m_reader;
    std::shared_ptr<Sources> m_sources; ///< null until they are open
    std::unique_ptr<QSocketNotifier> m_events; ///< destroyed before the sources, as the next
    std::unique_ptr<QSocketNotifier> m_families;
};

} // namespace netvane::radio
