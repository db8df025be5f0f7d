#pragma once

#include "base/clock.h"
#include "verdict/evidence.h"
#include "verdict/extra_probes.h"
#include "verdict/verdict_keeper.h"

#include <QObject>

#include <memory>

namespace netvane::platform {
struct HttpAnswer;
struct Platform;
struct Resolution;
} // namespace netvane::platform
namespace netvane::probes {
class CaptivePortalService;
class DNSService;
class PingService;
struct TimedResolution;
} // namespace netvane::probes
namespace netvane::wifi {
class WiFiService;
} // namespace netvane::wifi

namespace netvane::verdict {

/// Collects the evidence while the other services measure, judges it, and publishes a verdict that
/// changed. It has no timer: a round begins with each probe of the internet. Main thread.
class VerdictService : public QObject {
    Q_OBJECT

public:
    /// All outlive this. Nothing is asked before `followProbes`.
    VerdictService(platform::Platform& platform, wifi::WiFiService& wifi, probes::DNSService& dns,
        probes::CaptivePortalService& portal);
    ~VerdictService() override;

    /// The latency probes, which exist later than the rest; `router` may be null. Further calls add
    /// what was not followed yet.
    void followProbes(probes::PingService* router, probes::PingService& internet);

    const Verdict& verdict() const { return m_keeper.shown(); }
    /// When the evidence that the verdict quotes was as old as it says.
    TimePoint weighedAt() const { return m_keeper.shownAt(); }
    const Evidence& evidence() const { return m_evidence; }
    /// Rounds of probes that have ended.
    int rounds() const { return m_rounds; }

Q_SIGNALS:
    /// Cause, severity or sentence changed.
    void verdictChanged();
    /// It was judged anew; figures may have changed. For a window that shows them.
    void evidenceChanged();

private:
    void beginRound();
    void readNetwork();
    void takeNetwork(const platform::NetworkState& state);
    void takeLink(
        const std::optional<platform::LinkReading>& reading, const std::optional<bool>& radioOn);
    void takeLookup(TimePoint startedAt, const probes::TimedResolution& lookup);
    void takeWeb(std::optional<Reading<WebAnswer>> Evidence::*place,
        const platform::HttpAnswer& answer, const QString& asked);
    void askNameServers();
    void checkWeb();
    void ask(const QUrl& page, std::optional<Reading<WebAnswer>> Evidence::*place,
        std::optional<TimePoint>& askedAt);
    void measureLoad(const platform::NetworkState& state);
    void learn();
    void forget();
    bool isSuspicious() const;
    void judgeNow();

    platform::Platform& m_platform;
    base::Clock& m_clock;
    const probes::DNSService& m_dns;
    const probes::PingService* m_router = nullptr;
    const probes::PingService* m_internet = nullptr;
    Evidence m_evidence;
    ExtraProbes m_extraProbes;
    VerdictKeeper m_keeper;
    std::optional<platform::DefaultRoute> m_lastRoute; ///< of the network that was learned
    std::optional<Reading<platform::NetworkInterface>> m_lastCounters;
    std::optional<TimePoint> m_webAskedAt, m_plainWebAskedAt;
    /// Since when the system's resolver denies the test name or leads it where it cannot be.
    std::optional<TimePoint> m_namesDoubtedSince;
    int m_rounds = 0;
};

} // namespace netvane::verdict
