#include "probes/dns_service.h"

#include "base/detached_work.h"
#include "base/log.h"
#include "base/publish.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::probes {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.probes")

constexpr int kLookupsPerLogLine = 10;

/// Uses the clock of the process: that of the service may be destroyed before a blocked lookup
/// returns.
TimedResolution timedResolve(platform::Resolver& resolver, const std::string& host)
{
    TimedResolution timed;
    const auto begin = std::chrono::steady_clock::now();
    timed.resolution = resolver.resolve(host);
    timed.duration = std::chrono::steady_clock::now() - begin;
    return timed;
}

} // namespace

DNSService::DNSService(const NetworkUtils& network, std::shared_ptr<platform::Resolver> resolver,
    base::Clock& clock, QString testHost)
    : m_network(network)
    , m_resolver(std::move(resolver))
    , m_clock(clock)
    , m_testHost(std::move(testHost))
    , m_lookupSubject(clock, publicationInterval, [this](double milliseconds) {
        base::publish(*this, m_lookupTime, milliseconds, &DNSService::lookupTimeChanged);
    })
{
}

void DNSService::start()
{
    performLookup();
    m_lookupTimer = m_clock.repeat(lookupInterval, [this] { performLookup(); });
}

void DNSService::performLookup()
{
    const QString server = m_network.getDNSServers().value(0, u"Unknown"_s);
    QMetaObject::invokeMethod(
        this,
        [this, server] {
            base::publish(*this, m_dnsServer, server, &DNSService::dnsServerChanged);
        },
        Qt::QueuedConnection);
    timeLookup();
}

void DNSService::timeLookup()
{
    if (m_inFlight.size() >= maxLookupsInFlight)
        return;
    ++m_lookupCount;
    if (m_lookupCount % kLookupsPerLogLine == 0)
        base::log(logCategory(),
            u"DNSService: Lookup #%1, history count: %2"_s.arg(
                QString::number(m_lookupCount), QString::number(m_history.size())));
    const auto startedAt = m_clock.monotonicNow();
    const bool started = base::runDetached(
        this,
        [resolver = m_resolver, host = m_testHost.toStdString()] {
            return timedResolve(*resolver, host);
        },
        [this, startedAt, asleepBefore = m_clock.timeAsleep()](const TimedResolution& lookup) {
            m_inFlight.erase(std::ranges::find(m_inFlight, startedAt));
            if (base::hasSlept(asleepBefore, m_clock.timeAsleep()))
                return;
            finishLookup(lookup);
            Q_EMIT lookupEnded(startedAt, lookup);
        },
        m_clock, base::Delivery::Batched);
    if (started)
        m_inFlight.push_back(startedAt);
    else
        base::log(logCategory(), u"DNSService: No thread to be had for a lookup"_s);
}

void DNSService::finishLookup(const TimedResolution& lookup)
{
    if (const auto& resolution = lookup.resolution; resolution.status != 0) {
        base::log(logCategory(),
            u"DNSService: DNS lookup failed for %1: %2 (status: %3)"_s.arg(m_testHost,
                QString::fromLocal8Bit(resolution.errorText), QString::number(resolution.status)));
        return;
    }
    const std::chrono::duration<double, std::milli> milliseconds = lookup.duration;
    const MetricDataPoint point {.timestamp = m_clock.now(), .value = milliseconds.count()};
    appendBounded(m_history, point, maxHistorySize);
    m_lookupSubject.send(milliseconds.count());
}

std::optional<std::chrono::steady_clock::time_point> DNSService::pendingSince() const
{
    return m_inFlight.empty() ? std::nullopt : std::optional(m_inFlight.front());
}

} // namespace netvane::probes
