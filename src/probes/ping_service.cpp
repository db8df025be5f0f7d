#include "probes/ping_service.h"

#include "base/log.h"
#include "base/publish.h"
#include "probes/history.h"

#include <algorithm>
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

/// One connection whose time is measured. It owns the connection and the timeout.
struct PingService::Probe {
    const std::chrono::steady_clock::time_point startedAt;
    const std::chrono::milliseconds asleepBefore;
    std::unique_ptr<platform::Connection> connection {};
    std::unique_ptr<base::Timer> timeout {};
};

PingService::PingService(QString targetHost, QString targetName, base::Clock& clock,
    platform::ConnectionFactory& connections)
    : m_targetHost(std::move(targetHost))
    , m_targetName(std::move(targetName))
    , m_clock(clock)
    , m_connections(connections)
    , m_metricsSubject(clock, publishInterval, [this](const NetworkMetrics& metrics) {
        base::publish(*this, m_currentMetrics, metrics, &PingService::currentMetricsChanged);
    })
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

void PingService::setTargetHost(const QString& host)
{
    if (m_targetHost == host)
        return;
    const bool wasRunning = m_isRunning;
    stop();
    m_inFlight.clear(); // they would tell of the other target
    m_failures.clear();
    m_targetHost = host;
    if (wasRunning)
        start();
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
    const auto probe = std::make_shared<Probe>(
        Probe {.startedAt = m_clock.monotonicNow(), .asleepBefore = m_clock.timeAsleep()});
    // A weak pointer, so that the probes and their connections are destroyed with the service.
    probe->connection = m_connections.connectTcp(m_targetHost, portOf(m_targetHost),
        [this, weakProbe = std::weak_ptr(probe)](const platform::ConnectionEvent& event) {
            if (const auto held = weakProbe.lock())
                handleEvent(*held, event);
        });
    probe->timeout = m_clock.after(probeTimeout, [this, probe = probe.get()] {
        finishProbe(*probe, {}, u"Timeout waiting for connection to "_s + m_targetHost);
    });
    m_inFlight.push_back(probe);
    probe->connection->start();
    Q_EMIT probeBegan();
}

void PingService::handleEvent(const Probe& probe, const platform::ConnectionEvent& event)
{
    switch (event.state) {
    case platform::ConnectionState::Ready: {
        const auto latency = event.at - probe.startedAt;
        // Too late: the timeout is due, but a busy main thread has not run it yet.
        if (latency < probeTimeout)
            finishProbe(probe, std::chrono::duration<double, std::milli>(latency).count(), {},
                event.retransmissions);
        return;
    }
    case platform::ConnectionState::Failed:
        finishProbe(probe, {}, u"Connection failed to "_s + m_targetHost + u": "_s + event.error);
        return;
    case platform::ConnectionState::Cancelled:
        finishProbe(probe, {});
        return;
    }
}

/// Cancels the connection.
void PingService::finishProbe(const Probe& probe, std::optional<double> latencyMs,
    const QString& failure, std::optional<int> retransmissions)
{
    const auto place = std::ranges::find(m_inFlight, &probe, &std::shared_ptr<Probe>::get);
    if (place == m_inFlight.end())
        return;
    const auto held = std::move(*place); // keeps the probe alive to the end
    m_inFlight.erase(place);
    if (base::hasSlept(held->asleepBefore, m_clock.timeAsleep()))
        return;
    if (!failure.isEmpty())
        logFailure(failure);
    else if (latencyMs && m_inFlight.empty()) // one that began earlier may still time out
        m_failures.clear();
    recordResult(latencyMs);
    Q_EMIT probeEnded({held->startedAt, latencyMs, retransmissions});
}

/// A router that is gone times out and is unreachable by turns: each is a line of its own once.
void PingService::logFailure(const QString& failure)
{
    const auto now = m_clock.nowWithSleep();
    auto& [count, loggedAt] = m_failures[failure];
    if (++count > 1 && now - loggedAt < failureLogInterval)
        return;
    loggedAt = now;
    const QString times = count > 1 ? u" (%1 times without an answer)"_s.arg(count) : QString();
    base::log(logCategory(), u"PingService: "_s + failure + times);
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

/// From the successful probes only; a loss does not change it.
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

} // namespace netvane::probes
