#pragma once

#include "base/clock.h"
#include "diagnostics/traceroute_hop.h"
#include "platform/hop_probe.h"

#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace netvane::diagnostics {

/// How far a trace goes.
enum class TraceExtent {
    ToSilence, ///< the nearest routers may be silent; a later one ends it
    WholeWay, ///< past routers that are silent, to any host that the resolver knows
};

/// Finds the routers on the way to a host, on request: three probes for each number of hops, one
/// after the other, and one published hop as soon as its probes are done. Ends at the target, after
/// `maxHops`, or with the first hop after `maxSilentStart` that nobody answers, as its extent says.
/// Main thread; probes report on a network thread, which never touches this.
class TracerouteService : public QObject {
    Q_OBJECT

public:
    static constexpr int maxHops = 30;
    static constexpr int maxSilentStart = 3; ///< routers near home are often silent
    static constexpr int probesPerHop = 3;
    static constexpr std::chrono::milliseconds timeoutPerHop {3000}; ///< of one probe
    static constexpr std::chrono::milliseconds pauseAfterProbe {100};
    /// Probe number 1 goes to the port after it. Nothing listens there, by an old custom of
    /// traceroute(8).
    static constexpr quint16 portBeforeFirst = 33434;

    /// Both outlive this. Nothing is sent before `startTrace`.
    TracerouteService(base::Clock& clock, platform::HopProbeFactory& probes,
        TraceExtent extent = TraceExtent::ToSilence);
    ~TracerouteService() override;

    /// What is traced when the user names no host.
    static QString defaultTarget();

    /// Of the current or last trace, nearest first.
    const std::vector<TracerouteHop>& hops() const { return m_hops; }
    bool isRunning() const { return m_isRunning; }
    /// Of the current or last trace, as it was given; `defaultTarget` before the first.
    const QString& targetHost() const { return m_targetHost; }
    /// Why the last trace ended before it reached its target, in a sentence for the user; empty
    /// when it did reach it, when the user stopped it, and while one runs.
    const QString& earlyEnd() const { return m_earlyEnd; }

    /// `host` is whatever the user typed. Of an extent `ToSilence`, without a dot in it there is
    /// nothing to trace and the trace ends at once, without hops. Ignored while a trace runs.
    void startTrace(const QString& host);
    /// The hop under way still has its probes and appears, unless a new trace begins before.
    void stopTrace();

Q_SIGNALS:
    void hopsChanged();
    void isRunningChanged();
    void targetHostChanged();

private:
    struct Probe;
    struct ProbeResult;
    struct Run;

    void performTrace();
    void sendProbe();
    void handleEvent(const Probe& probe, const platform::ConnectionEvent& event);
    void finishProbe(const std::optional<ProbeResult>& result);
    void pause(std::chrono::milliseconds length);
    void afterPause();
    void finishHop();
    TracerouteHop hopOfRun() const;
    bool isEndedBy(const TracerouteHop& hop) const;
    QString reasonOfEnd(const TracerouteHop& last) const;
    void endTrace();
    void setRunning(bool isRunning);

    base::Clock& m_clock;
    platform::HopProbeFactory& m_probes;
    const TraceExtent m_extent;
    std::vector<TracerouteHop> m_hops;
    bool m_isRunning = false;
    QString m_targetHost = defaultTarget();
    QString m_earlyEnd;
    /// The trace that runs, or the last hop of one that was stopped. Timers and probes belong to
    /// it, so that nothing of an old trace is left once there is a new one.
    std::shared_ptr<Run> m_run;
};

} // namespace netvane::diagnostics
