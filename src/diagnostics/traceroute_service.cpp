#include "diagnostics/traceroute_service.h"

#include "base/publish.h"
#include "probes/probe_targets.h"

#include <numeric>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::diagnostics {

struct TracerouteService::ProbeResult {
    QString address;
    std::optional<QString> hostname;
    std::optional<double> timeMs;
};

/// One question. It goes when it is over, and its connection with it.
struct TracerouteService::Probe {
    const std::chrono::steady_clock::time_point startedAt;
    std::unique_ptr<platform::Connection> connection {};
};

struct TracerouteService::Run {
    explicit Run(QString host)
        : target(std::move(host))
    {
    }

    const QString target;
    std::unique_ptr<platform::HopPath> path; ///< absent before the first probe
    QString sendError; ///< of the last probe, when it could not be sent
    int hopNumber = 1;
    int probeNumber = 0; ///< of this hop; 0 before the first
    std::vector<ProbeResult> results; ///< of this hop
    bool isCancelled = false;
    std::shared_ptr<Probe> probe; ///< absent in a pause
    std::unique_ptr<base::Timer> timer; ///< the probe's timeout, or the end of the pause
};

TracerouteService::TracerouteService(
    base::Clock& clock, platform::HopProbeFactory& probes, TraceExtent extent)
    : m_clock(clock)
    , m_probes(probes)
    , m_extent(extent)
{
}

TracerouteService::~TracerouteService() = default;

QString TracerouteService::defaultTarget()
{
    return probes::kInternetTarget;
}

void TracerouteService::startTrace(const QString& host)
{
    if (m_isRunning)
        return;
    const bool isOtherHost = m_targetHost != host;
    m_targetHost = host;
    const bool hadHops = !m_hops.empty();
    m_hops.clear();
    m_earlyEnd.clear();
    m_isRunning = true;
    m_run = std::make_shared<Run>(host);
    m_run->timer = m_clock.after(0ms, [this] { performTrace(); });
    // Told of at the end, when whoever is told may stop the trace again.
    if (isOtherHost)
        Q_EMIT targetHostChanged();
    if (hadHops)
        Q_EMIT hopsChanged();
    Q_EMIT isRunningChanged();
}

void TracerouteService::stopTrace()
{
    if (m_run && !m_run->isCancelled) {
        m_run->isCancelled = true;
        if (!m_run->probe && m_run->probeNumber > 0)
            pause(0ms);
    }
    setRunning(false);
}

void TracerouteService::performTrace()
{
    // Four numbers are taken for an address whatever their size, and everything else with a dot for
    // a name or an address; resolving is left to the probes.
    const bool isTarget = m_extent == TraceExtent::WholeWay || m_run->target.contains(u'.');
    if (!isTarget || m_run->isCancelled) {
        if (!m_run->isCancelled)
            m_earlyEnd = u"Nothing to trace: type a name with a dot in it, or an IPv4 address"_s;
        endTrace();
        return;
    }
    m_run->path = m_probes.pathTo(m_run->target);
    sendProbe();
}

void TracerouteService::sendProbe()
{
    ++m_run->probeNumber;
    m_run->sendError.clear();
    const auto probe = std::make_shared<Probe>(Probe {.startedAt = m_clock.monotonicNow()});
    // Weakly: when the run goes its probe goes with it, and the connection with that.
    probe->connection
        = m_run->path->probe(quint16(portBeforeFirst + m_run->probeNumber), m_run->hopNumber,
            [this, weakProbe = std::weak_ptr(probe)](const platform::ConnectionEvent& event) {
                if (const auto held = weakProbe.lock())
                    handleEvent(*held, event);
            });
    m_run->probe = probe;
    m_run->timer = m_clock.after(timeoutPerHop, [this] { finishProbe({}); });
    probe->connection->start();
}

void TracerouteService::handleEvent(const Probe& probe, const platform::ConnectionEvent& event)
{
    if (event.state != platform::ConnectionState::Ready) {
        if (!event.askedAt)
            m_run->sendError = event.error;
        finishProbe({});
        return;
    }
    // Too late: the timeout is due, and only a busy main thread has not run it yet.
    if (event.at - probe.startedAt >= timeoutPerHop)
        return;
    // The resolver's time is none of the router's.
    const auto elapsed = event.at - event.askedAt.value_or(probe.startedAt);
    finishProbe(ProbeResult {.address = event.answeredBy,
        .timeMs = std::chrono::duration<double, std::milli>(elapsed).count()});
}

void TracerouteService::finishProbe(const std::optional<ProbeResult>& result)
{
    m_run->probe.reset();
    if (result)
        m_run->results.push_back(*result);
    pause(m_run->isCancelled ? 0ms : pauseAfterProbe);
}

void TracerouteService::pause(std::chrono::milliseconds length)
{
    m_run->timer = m_clock.after(length, [this] { afterPause(); });
}

void TracerouteService::afterPause()
{
    if (m_run->probeNumber < probesPerHop)
        sendProbe();
    else
        finishHop();
}

void TracerouteService::finishHop()
{
    const auto hop = hopOfRun();
    const bool isTarget = hop.ipAddress == m_run->target;
    const bool isLast = isTarget || isEndedBy(hop);
    if (isLast && !isTarget && !m_run->isCancelled)
        m_earlyEnd = reasonOfEnd(hop);
    const std::weak_ptr<Run> run = m_run;
    m_hops.push_back(hop);
    Q_EMIT hopsChanged();
    // Whoever was told may have stopped this trace and begun another.
    if (run.expired())
        return;
    if (isLast || m_run->isCancelled) {
        endTrace();
        return;
    }
    ++m_run->hopNumber;
    m_run->probeNumber = 0;
    m_run->results.clear();
    sendProbe();
}

TracerouteHop TracerouteService::hopOfRun() const
{
    TracerouteHop hop {
        .id = QUuid::createUuid(), .hopNumber = m_run->hopNumber, .ipAddress = kUnansweredAddress};
    std::vector<double> times;
    for (const auto& result : m_run->results) {
        if (result.timeMs)
            times.push_back(*result.timeMs);
    }
    if (!m_run->results.empty()) {
        hop.ipAddress = m_run->results.front().address;
        hop.hostname = m_run->results.front().hostname;
    }
    if (!times.empty())
        hop.latency = std::accumulate(times.begin(), times.end(), 0.0) / double(times.size());
    hop.isComplete = hop.ipAddress == m_run->target || int(times.size()) == probesPerHop;
    return hop;
}

bool TracerouteService::isEndedBy(const TracerouteHop& hop) const
{
    if (hop.latency)
        return hop.hopNumber == maxHops;
    if (m_extent == TraceExtent::ToSilence)
        return hop.hopNumber > maxSilentStart;
    // What cannot be sent to the next hop cannot be sent to any.
    return hop.hopNumber == maxHops || !m_run->sendError.isEmpty();
}

QString TracerouteService::reasonOfEnd(const TracerouteHop& last) const
{
    if (last.latency || last.hopNumber == maxHops)
        return u"The target was not reached within %1 hops"_s.arg(maxHops);
    if (!m_run->sendError.isEmpty())
        return u"No probe could be sent: %1"_s.arg(m_run->sendError);
    return u"Hop %1 did not answer; the trace ends there"_s.arg(last.hopNumber);
}

void TracerouteService::endTrace()
{
    m_run.reset();
    setRunning(false);
}

void TracerouteService::setRunning(bool isRunning)
{
    base::publish(*this, m_isRunning, isRunning, &TracerouteService::isRunningChanged);
}

} // namespace netvane::diagnostics
