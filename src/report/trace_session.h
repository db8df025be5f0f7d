#pragma once

#include "base/clock.h"
#include "diagnostics/traceroute_service.h"
#include "platform/hop_probe.h"

#include <QObject>

namespace netvane::report {

/// A trace past silent routers, as text for people or as an object. Main thread.
class TraceSession : public QObject {
    Q_OBJECT

public:
    /// Both outlive this. With `redact`, hosts and addresses give way to "[host 1]" and "[address
    /// 1]".
    TraceSession(base::Clock& clock, platform::HopProbeFactory& probes, QString host, bool redact);

    void start() { m_trace.startTrace(m_host); }
    bool isReached() const { return !m_trace.isRunning() && m_trace.earlyEnd().isEmpty(); }

    /// The hop that was found last, in a line of its own.
    QString lastHop() const;
    /// All hops in lines, and how it ended.
    QString text() const;
    /// As docs/netvane-report.schema.json describes it. `now` is the wall clock.
    QByteArray json(std::chrono::system_clock::time_point now) const;

Q_SIGNALS:
    void hopFound();
    void finished();

private:
    QString shownAddress(const QString& address) const;
    QString lineOf(const diagnostics::TracerouteHop& hop) const;

    const QString m_host;
    const bool m_redact;
    diagnostics::TracerouteService m_trace;
};

} // namespace netvane::report
