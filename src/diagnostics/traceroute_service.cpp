#include "diagnostics/traceroute_service.h"

#include "base/publish.h"
#include "probes/probe_targets.h"

#include <numeric>

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
    int hopNumber = 1;
    int probeNumber = 0; ///< of this hop; 0 before the first
    std::vector<ProbeResult> results; ///< of this hop
    bool isCancelled = false;
    std::shared_ptr<Probe> probe; ///< absent in a pause
    std::unique_ptr<base::Timer> timer; ///< the probe's timeout, or the end of the pause
};

TracerouteService::TracerouteService(base::Clock& clock, platform::HopProbeFactory& probes)
    : m_clock(clock)
    , m_probes(probes)
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
    // a name or an address; resolving is left to each probe.
    if (!m_run->target.contains(u'.') || m_run->isCancelled)
        endTrace();
    else
        sendProbe();
}

void TracerouteService::sendProbe()
{
    ++m_run->probeNumber;
    const auto probe = std::make_shared<Probe>(Probe {.startedAt = m_clock.monotonicNow()});
    // Weakly: when the run goes its probe goes with it, and the connection with that.
    probe->connection = m_probes.probeHop(m_run->target,
        quint16(portBeforeFirst + m_run->probeNumber), m_run->hopNumber,
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
        finishProbe({});
        return;
    }
    const auto elapsed = event.at - probe.startedAt;
    // Too late: the timeout is due, and only a busy main thread has not run it yet.
    if (elapsed < timeoutPerHop)
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
    const bool isLast
        = isTarget || (hop.latency ? hop.hopNumber == maxHops : hop.hopNumber > maxSilentStart);
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
