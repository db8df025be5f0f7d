#include "base/work_queues.h"
#include "probes/dns_service.h"
#include "simulated/manual_clock.h"
#include "simulated/network.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QProcess>
#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

constexpr const char* kLeaveWhileHanging = "--leave-while-hanging";

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

public:
    static std::optional<int> runAs(const QStringList& arguments)
    {
        if (arguments.isEmpty() || arguments[0] != QLatin1StringView(kLeaveWhileHanging))
            return {};
        World world;
        world.resolver->isHeld = true;
        world.service->start();
        const auto begun = [&world] { return world.resolver->calls == 1; };
        return QTest::qWaitFor(begun) ? 0 : 1;
    }

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }

    void keepsTheLastTenSuccesses()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        QVERIFY(!service->lookupTime());
        service->start();
        QTRY_COMPARE(service->history().size(), size_t(1));
        QCOMPARE(service->lookupTime(), service->history().front().value);
        QVERIFY(resolver->lastHostIsExpected);
        for (int tick = 2; tick <= 12; ++tick) {
            clock.advance(5s);
            QTRY_COMPARE(service->history().back().timestamp, clock.now());
            QCOMPARE(service->history().size(), size_t(std::min(tick, 10)));
        }
        QCOMPARE(service->history().front().timestamp, clock.now() - 45s);
        QCOMPARE(service->lookupTime(), service->history().back().value);
        const int count = service->lookupCount();
        service->stop();
        clock.advance(60s);
        QCOMPARE(service->lookupCount(), count);
    }

    void timesTheResolver()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        resolver->isHeld = true;
        service->start();
        QTRY_COMPARE(resolver->calls, 1);
        QElapsedTimer held;
        held.start();
        QTest::qSleep(3);
        const double shortest = double(held.nsecsElapsed()) / 1e6;
        resolver->letGo.release();
        QTRY_VERIFY(service->lookupTime());
        QVERIFY(*service->lookupTime() >= shortest);
    }

    void aFailureLeavesALineAndNothingElse()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        test::CapturedLog log;
        service->start();
        QTRY_VERIFY(service->lookupTime());
        const auto before = service->lookupTime();
        resolver->status = -2;
        clock.advance(5s);
        QStringList lines;
        QTRY_VERIFY(!(lines += log.take()).isEmpty());
        QCOMPARE(lines,
            QStringList {
                u"DNSService: DNS lookup failed for host.test: Name or service not known (status: -2)"_s});
        clock.advance(500ms);
        QCOMPARE(service->lookupTime(), before);
        QCOMPARE(service->history().size(), size_t(1));
    }

    void namesTheFirstServer()
    {
        auto& [clock, configuration, pool, network, resolver, service] = *m_world;
        QSignalSpy changes(service.get(), &probes::DNSService::dnsServerChanged);
        service->start();
        QVERIFY(!service->dnsServer());
        QTRY_COMPARE(service->dnsServer(), u"Unknown"_s);
        configuration.servers = {u"fe80::1%wlan0"_s, u"9.9.9.9"_s};
        clock.advance(10s);
        QTRY_COMPARE(service->dnsServer(), u"fe80::1%wlan0"_s);
        QCOMPARE(changes.size(), 2);
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

    void theProgramLeavesWhileALookupHangs()
    {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(),
            {u"dns_service"_s, QString::fromLatin1(kLeaveWhileHanging)});
        QVERIFY(child.waitForFinished(20000));
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
    }

private:
    std::unique_ptr<World> m_world;
};

NETVANE_TEST(TestDNSService)

#include "test_dns_service.moc"
