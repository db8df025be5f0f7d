#pragma once

#include "base/clock.h"
#include "base/work_queues.h"
#include "netlink/generic_events.h"
#include "radio/air/recording.h"

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace netvane::radio {

/// Asks each five seconds and listens to the events between. Main thread.
class AirRecorder : public QObject {
    Q_OBJECT

public:
    /// Clock and queue outlive this.
    AirRecorder(base::Clock& clock, base::WorkQueue& queue);
    ~AirRecorder() override;

    void start(std::chrono::seconds duration);
    /// What it `finished` with. The failures are those of `platform::AirReader::read`.
    const base::Result<AirRecording>& recording() const { return m_recording; }

Q_SIGNALS:
    void finished();

private:
    void ask();
    void follow(std::shared_ptr<base::Result<netlink::GenericEvents>> events);
    void keep(AirMessages messages);
    void finish();

    base::Clock& m_clock;
    base::WorkQueue& m_queue;
    std::chrono::steady_clock::time_point m_start;
    base::Result<AirRecording> m_recording;
    std::shared_ptr<base::Result<netlink::GenericEvents>> m_events; ///< null until they are open
    std::unique_ptr<QSocketNotifier> m_notifier; ///< destroyed before the events
    std::unique_ptr<base::Timer> m_passes;
    std::unique_ptr<base::Timer> m_end;
};

} // namespace netvane::radio
