#pragma once

#include "base/clock.h"
#include "platform/resolver.h"
#include "probes/history.h"
#include "probes/latest_value_throttle.h"
#include "probes/network_utils.h"

#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace netvane::probes {

/// The result of one lookup and how long the resolver took.
struct TimedResolution {
    platform::Resolution resolution;
    std::chrono::steady_clock::duration duration {};
};

/// Measures every 5 seconds how long the system's resolver takes for one well-known name, caches
/// included. Main thread; each lookup runs on its own thread, since a blocked one cannot be ended.
class DNSService : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds lookupInterval {5000};
    static constexpr std::chrono::milliseconds publicationInterval {500};
    static constexpr size_t maxHistorySize = 10;
    /// While so many lookups are blocked, no further one begins: a dead resolver must not
    /// accumulate threads.
    static constexpr int maxLookupsInFlight = 4;

    /// `network` and `clock` outlive this. Nothing is looked up before `start`.
    DNSService(const NetworkUtils& network, std::shared_ptr<platform::Resolver> resolver,
        base::Clock& clock, QString testHost);

    void start();
    /// The results of running lookups still count.
    void stop() { m_lookupTimer.reset(); }

    /// The last success in milliseconds, published at most half a second late. Absent before the
    /// first.
    const std::optional<double>& lookupTime() const { return m_lookupTime; }
    /// The first configured server, or "Unknown" without any. Absent before the first lookup
    /// begins.
    const std::optional<QString>& dnsServer() const { return m_dnsServer; }
    /// The last successes in milliseconds, oldest first.
    const std::vector<MetricDataPoint>& history() const { return m_history; }
    const QString& testHost() const { return m_testHost; }
    /// Lookups begun so far.
    int lookupCount() const { return m_lookupCount; }
    /// When the oldest unfinished look-up began; absent while none runs.
    std::optional<std::chrono::steady_clock::time_point> pendingSince() const;

    void performLookup();

Q_SIGNALS:
    void lookupTimeChanged();
    void dnsServerChanged();
    /// A look-up came to its end, whatever it found; one across which the machine slept does not.
    void lookupEnded(std::chrono::steady_clock::time_point startedAt,
        const netvane::probes::TimedResolution& lookup);

private:
    void timeLookup();
    void finishLookup(const TimedResolution& lookup);

    const NetworkUtils& m_network;
    const std::shared_ptr<platform::Resolver> m_resolver;
    base::Clock& m_clock;
    const QString m_testHost;
    std::optional<double> m_lookupTime;
    std::optional<QString> m_dnsServer;
    std::vector<MetricDataPoint> m_history;
    LatestValueThrottle<double> m_lookupSubject;
    int m_lookupCount = 0;
    std::vector<std::chrono::steady_clock::time_point> m_inFlight; ///< when they began
    std::unique_ptr<base::Timer> m_lookupTimer;
};

} // namespace netvane::probes
