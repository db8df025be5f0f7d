#pragma once

// This room holds the services that measure on timers: latency and loss of the router and the
// internet, the time of a name lookup, and the captive portal; and the reading of the network
// configuration. Each service publishes its last reading and keeps a bounded history. They use the
// classes of `platform`.

#include "base/clock.h"
#include "platform/connection.h"
#include "probes/latest_value_throttle.h"
#include "probes/network_metrics.h"

#include <QObject>

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace netvane::probes {

/// How one probe ended.
struct ProbeOutcome {
    std::chrono::steady_clock::time_point startedAt;
    std::optional<double> latencyMs; ///< absent: no answer in time
    std::optional<int> retransmissions {}; ///< see `platform::ConnectionEvent`
};

/// Measures latency, jitter and loss towards one target every 3 seconds by the time that a TCP
/// connection takes to become ready; one that does not within `probeTimeout` is a lost packet. One
/// across which the machine slept tells nothing and counts as nothing. Main thread; connections
/// that report on another thread never access this object.
class PingService : public QObject {
    Q_OBJECT

public:
    static constexpr size_t maxHistorySize = 10;
    static constexpr size_t packetLossWindow = 10; ///< probes
    static constexpr std::chrono::milliseconds pingInterval {3000};
    static constexpr std::chrono::milliseconds probeTimeout {3000};
    static constexpr std::chrono::milliseconds publishInterval {500};
    /// A failure that goes on is logged again after so long, asleep or not.
    static constexpr std::chrono::hours failureLogInterval {1};

    /// `targetHost` is an address or a name, `targetName` the label that the records carry.
    /// `clock` and `connections` outlive this. Nothing is probed before `start`.
    PingService(QString targetHost, QString targetName, base::Clock& clock,
        platform::ConnectionFactory& connections);
    ~PingService() override;

    /// Clears the earlier results and begins; does nothing while running.
    void start();
    /// The results of probes in flight still count.
    void stop();
    /// Probes another target from now on; begins anew with it while running. Does nothing if it is
    /// the same.
    void setTargetHost(const QString& host);
    /// While running, probes now and then after every interval: for use when the machine woke up.
    void probeAtOnce();

    const QString& targetHost() const { return m_targetHost; }
    const QString& targetName() const { return m_targetName; }
    bool isRunning() const { return m_isRunning; }
    /// The latest record, at most one every `publishInterval`; absent before the first start.
    const std::optional<NetworkMetrics>& currentMetrics() const { return m_currentMetrics; }
    /// The last records, oldest first, at most `maxHistorySize`.
    const std::vector<NetworkMetrics>& metrics() const { return m_metrics; }
    /// The last round trips of successful probes in ms, oldest first, at most `maxHistorySize`.
    const std::vector<double>& pingHistory() const { return m_pingHistory; }
    /// Probes begun since the last start.
    int pingCount() const { return m_pingCount; }

Q_SIGNALS:
    void currentMetricsChanged();
    /// A probe was sent.
    void probeBegan();
    /// A probe ended; one across which the machine slept does not.
    void probeEnded(const netvane::probes::ProbeOutcome& outcome);

private:
    struct Probe;
    struct LoggedFailure {
        int count = 0;
        std::chrono::steady_clock::time_point loggedAt; ///< sleep counts
    };

    void performPing();
    void measureLatency();
    void handleEvent(const Probe& probe, const platform::ConnectionEvent& event);
    void finishProbe(const Probe& probe, std::optional<double> latencyMs,
        const QString& failure = {}, std::optional<int> retransmissions = {});
    void logFailure(const QString& failure);
    void recordResult(std::optional<double> latencyMs);
    std::optional<double> jitter() const;
    double updatePacketLoss(bool success);

    QString m_targetHost;
    const QString m_targetName;
    base::Clock& m_clock;
    platform::ConnectionFactory& m_connections;
    std::optional<NetworkMetrics> m_currentMetrics;
    std::vector<NetworkMetrics> m_metrics;
    std::vector<double> m_pingHistory;
    std::vector<bool> m_recentResults; ///< of the last `packetLossWindow` probes, oldest first
    std::vector<std::shared_ptr<Probe>> m_inFlight;
    std::map<QString, LoggedFailure>
        m_failures; ///< since the last success, by what was said of them
    std::unique_ptr<base::Timer> m_pingTimer;
    LatestValueThrottle<NetworkMetrics> m_metricsSubject;
    int m_pingCount = 0;
    bool m_isRunning = false;
};

} // namespace netvane::probes
