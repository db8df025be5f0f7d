#include "probes/ping_service.h"

#include "base/log.h"
#include "base/main_thread.h"
#include "probes/bounded_history.h"

#include <QPointer>

#include <algorithm>
#include <atomic>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::probes {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.probes")

constexpr int kPingsPerLogLine = 10;
constexpr quint16 kHttpPort = 80;
constexpr quint16 kHttpsPort = 443;

quint16 portOf(const QString& host)
{
    return host.contains(u"google") || host.contains(u"cloudflare") ? kHttpsPort : kHttpPort;
}

} // namespace

/// How a probe ended: a latency or a loss, and what the log says about the loss.
struct PingService::Outcome {
    std::optional<double> latencyMs;
    QString messageStart; ///< empty: nothing is logged
    QString messageEnd;
};

/// One connection being timed. Its events, on whatever thread, and the timeout on the main thread
/// share the flag and nothing else: who sets it delivers.
struct PingService::Probe {
    explicit Probe(PingService* owner)
        : service(owner)
        , startedAt(owner->m_clock.monotonicNow())
        , asleepBefore(owner->m_clock.timeAsleep())
    {
    }

    const QPointer<PingService> service; ///< asked for on the main thread only
    const std::chrono::steady_clock::time_point startedAt;
    const std::chrono::milliseconds asleepBefore;
    std::unique_ptr<platform::Connection> connection;
    std::atomic_flag hasCompleted;

    void handleEvent(const platform::ConnectionEvent& event);
    void complete(Outcome outcome);
};

void PingService::Probe::handleEvent(const platform::ConnectionEvent& event)
{
    switch (event.state) {
    case platform::ConnectionState::Ready: {
        const auto latency = event.at - startedAt;
        // Too late: the timeout is due, and only a busy main thread has not run it yet.
        if (latency < probeTimeout)
            complete({.latencyMs = std::chrono::duration<double, std::milli>(latency).count()});
        return;
    }
    case platform::ConnectionState::Failed:
        complete({.messageStart = u"Connection failed to "_s, .messageEnd = u": "_s + event.error});
        return;
    case platform::ConnectionState::Cancelled:
        complete({});
        return;
    }
}

/// Any thread. What follows on the main thread is dropped if the service is gone by then.
void PingService::Probe::complete(Outcome outcome)
{
    if (hasCompleted.test_and_set())
        return;
    connection->cancel();
    base::postToMainThread([service = service, probe = this, outcome = std::move(outcome)] {
        if (!outcome.messageStart.isEmpty())
            base::log(logCategory(),
                u"PingService: "_s + outcome.messageStart
                    + (service ? service->targetHost() : u"unknown"_s) + outcome.messageEnd);
        if (service)
            service->finishProbe(probe, outcome.latencyMs);
    });
}

PingService::PingService(QString targetHost, QString targetName, base::Clock& clock,
    platform::ConnectionFactory& connections)
    : m_targetHost(std::move(targetHost))
    , m_targetName(std::move(targetName))
    , m_clock(clock)
    , m_connections(connections)
    , m_metricsSubject(clock, publishInterval,
          [this](const NetworkMetrics& metrics) { setCurrentMetrics(metrics); })
{
}

PingService::~PingService()
{
    stop();
}

void PingService::start()
{
    if (m_isRunning)
        return;
    m_isRunning = true;
    m_pingHistory.clear();
    m_recentResults.clear();
    m_pingCount = 0;
    const auto seconds = std::chrono::duration<double>(pingInterval).count();
    base::log(logCategory(),
        u"PingService[%1]: Starting with interval %2s"_s.arg(
            m_targetName, QString::number(seconds, 'f', 1)));
    const NetworkMetrics initial {
        .timestamp = m_clock.now(), .packetLoss = 0, .target = m_targetName};
    m_metrics = {initial};
    m_metricsSubject.send(initial);
    probeAtOnce();
}

void PingService::probeAtOnce()
{
    if (!m_isRunning)
        return;
    performPing();
    m_pingTimer = m_clock.repeat(pingInterval, [this] { performPing(); });
}

void PingService::stop()
{
    m_isRunning = false;
    m_pingTimer.reset();
}

void PingService::performPing()
{
    if (!m_isRunning)
        return;
    ++m_pingCount;
    if (m_pingCount % kPingsPerLogLine == 0)
        base::log(logCategory(),
            u"PingService[%1]: Ping #%2, metrics count: %3"_s.arg(
                m_targetName, QString::number(m_pingCount), QString::number(m_metrics.size())));
    measureLatency();
}

void PingService::measureLatency()
{
    const auto probe = std::make_shared<Probe>(this);
    // Weakly: when the service goes its probes go with it, and the connections with them.
    probe->connection = m_connections.connectTcp(m_targetHost, portOf(m_targetHost),
        [weakProbe = std::weak_ptr(probe)](const platform::ConnectionEvent& event) {
            if (const auto held = weakProbe.lock())
                held->handleEvent(event);
        });
    m_inFlight.push_back({.probe = probe,
        .timeout = m_clock.after(probeTimeout, [this, probe] { probeTimedOut(*probe); })});
    probe->connection->start();
}

void PingService::probeTimedOut(Probe& probe)
{
    probe.complete({.messageStart = u"Timeout waiting for connection to "_s});
}

/// Also cancels the timeout, which found nothing to do since the probe completed.
void PingService::finishProbe(const Probe* probe, std::optional<double> latencyMs)
{
    const bool hasSlept = base::hasSlept(probe->asleepBefore, m_clock.timeAsleep());
    std::erase_if(m_inFlight, [probe](const InFlight& each) { return each.probe.get() == probe; });
    if (!hasSlept)
        recordResult(latencyMs);
}

void PingService::recordResult(std::optional<double> latencyMs)
{
    if (latencyMs)
        appendBounded(m_pingHistory, *latencyMs, maxHistorySize);
    const NetworkMetrics metrics {
        .timestamp = m_clock.now(),
        .ping = latencyMs,
        .jitter = jitter(),
        .packetLoss = updatePacketLoss(latencyMs.has_value()),
        .target = m_targetName,
    };
    appendBounded(m_metrics, metrics, maxHistorySize);
    m_metricsSubject.send(metrics);
}

/// Of the successful probes only; a loss leaves it as it was.
std::optional<double> PingService::jitter() const
{
    if (m_pingHistory.size() < 2)
        return {};
    double sum = 0;
    for (size_t i = 1; i < m_pingHistory.size(); ++i)
        sum += std::abs(m_pingHistory[i] - m_pingHistory[i - 1]);
    return sum / double(m_pingHistory.size() - 1);
}

double PingService::updatePacketLoss(bool success)
{
    appendBounded(m_recentResults, success, packetLossWindow);
    return double(std::ranges::count(m_recentResults, false)) / double(m_recentResults.size())
        * 100;
}

void PingService::setCurrentMetrics(const NetworkMetrics& metrics)
{
    if (m_currentMetrics == metrics)
        return;
    m_currentMetrics = metrics;
    Q_EMIT currentMetricsChanged();
}

} // namespace netvane::probes
