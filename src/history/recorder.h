#pragma once

#include "base/clock.h"
#include "history/history_store.h"
#include "history/minute_maker.h"
#include "history/outage_finder.h"
#include "platform/radio_monitor.h"

#include <QObject>

#include <deque>
#include <memory>

namespace netvane::platform {
struct Platform;
} // namespace netvane::platform
namespace netvane::verdict {
class VerdictService;
} // namespace netvane::verdict

namespace netvane::history {

/// Collects what the verdict rests on and what happened, and gives it to the store every ten
/// minutes and at the end. It has no timer: it follows the verdict's rounds. Main thread.
class Recorder : public QObject {
    Q_OBJECT

public:
    /// Both outlive this. Nothing is kept while `platform.historyFile` is empty.
    Recorder(platform::Platform& platform, const verdict::VerdictService& verdicts);
    /// Writes what is left, and waits for that.
    ~Recorder() override;

    /// For background threads, which may outlive this. Null while there is no file.
    const std::shared_ptr<HistoryStore>& store() const { return m_store; }
    /// Whether the user lets it record; stored.
    bool isRecording() const { return m_isRecording; }
    void setRecording(bool isRecording);
    /// Forgets soon, in the background.
    void forgetNetwork();
    void forgetEverything();
    /// The name of the network in use; empty for a cable.
    const QString& network() const { return m_network; }

    /// Something that this does not see by itself. Kinds are those of `Event`.
    void note(const QString& kind, const QString& text = {});

Q_SIGNALS:
    void isRecordingChanged();

private:
    struct State;

    void take();
    void takeOutcomes();
    void takeSample(Path path, const verdict::Outcome& outcome);
    void takeChanges();
    void takeRadio(const platform::RadioEvent& event);
    void takeClock();
    void addEvent(Event event);
    void beginIncident(std::chrono::milliseconds before, std::chrono::milliseconds after);
    void keep(const Sample& sample);
    void finishMinute(Milliseconds next);
    void flush();
    Milliseconds wallAt(verdict::TimePoint at) const;

    platform::Platform& m_platform;
    base::Clock& m_clock;
    const verdict::VerdictService& m_verdicts;
    std::shared_ptr<HistoryStore> m_store;
    bool m_isRecording = true;
    QString m_network;
    std::unique_ptr<State> m_state; ///< of what was seen last; absent before
    MinuteMaker m_minute;
    OutageFinder m_outages;
    Batch m_batch; ///< of this minute
    std::deque<Sample> m_recent; ///< of the last minutes, for when a fault begins
    verdict::TimePoint m_keepUntil; ///< samples are kept
    int m_samplesToday = 0;
    verdict::TimePoint m_flushedAt;
    QString m_lastProblem; ///< that was logged
};

} // namespace netvane::history
