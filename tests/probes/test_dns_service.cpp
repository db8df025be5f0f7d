#include "base/work_queues.h"
#include "probes/dns_service.h"
#include "simulated/manual_clock.h"
#include "simulated/network.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

/// A service and all that it needs.
struct World {
    simulated::ManualClock clock;
    simulated::NetworkConfiguration configuration;
    base::WorkQueue pool;
    probes::NetworkUtils network {configuration, pool};
    std::shared_ptr<simulated::Resolver> resolver = std::make_shared<simulated::Resolver>();
    std::unique_ptr<probes::DNSService> service = std::make_unique<probes::DNSService>(
        network, resolver, clock, QString::fromStdString(resolver->expectedHost));
};

} // namespace

class TestDNSService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }

    void keepsTheLastTenSuccesses()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        service->start();
        for (int tick = 1; tick <= 12; ++tick) {
            QTRY_VERIFY(
                !service->history().empty() && service->history().back().timestamp == clock.now());
            QCOMPARE(service->history().size(), size_t(std::min(tick, 10)));
            clock.advance(5s);
        }
        QVERIFY(resolver->lastHostIsExpected);
        QTRY_COMPARE(service->history().back().timestamp, clock.now());
        QCOMPARE(service->history().front().timestamp, clock.now() - 45s);
        QCOMPARE(service->lookupTime(), service->history().back().value);
        service->stop();
        clock.advance(60s);
        QCOMPARE(service->lookupCount(), 13);
    }

    void aFailureLeavesALineAndNothingElse()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        test::CapturedLog log;
        resolver->status = -2;
        service->start();
        QStringList lines;
        QTRY_VERIFY(!(lines += log.take()).isEmpty());
        QCOMPARE(lines,
            QStringList {
                u"DNSService: DNS lookup failed for host.test: Name or service not known (status: -2)"_s});
        QVERIFY(!service->lookupTime() && service->history().empty());
    }

    void hangingLookupsGatherNoFurtherOnes()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        resolver->isHeld = true;
        service->start();
        configuration.servers = {u"9.9.9.9"_s};
        clock.advance(60s);
        QTRY_COMPARE(resolver->calls, 4);
        QCOMPARE(service->lookupCount(), 4);
        QTRY_COMPARE(service->dnsServer(), u"9.9.9.9"_s); // the ticks do the rest of their work

        resolver->letGo.release(1);
        QTRY_COMPARE(service->history().size(), size_t(1));
        clock.advance(5s);
        QTRY_COMPARE(resolver->calls, 5);
        QCOMPARE(service->lookupCount(), 5);
        resolver->letGo.release(4);
        QTRY_COMPARE(service->history().size(), size_t(5));
    }

    void goesWhileALookupHangs()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        resolver->isHeld = true;
        service->start();
        QTRY_COMPARE(resolver->calls, 1);
        const std::shared_ptr<simulated::Resolver> shared = resolver;
        m_world.reset();
        QCOMPARE(shared.use_count(), 2); // the lookup keeps what it needs
        shared->letGo.release();
        QTRY_COMPARE(shared.use_count(), 1);
    }

private:
    std::unique_ptr<World> m_world;
};

NETVANE_TEST(TestDNSService)

#include "test_dns_service.moc"
