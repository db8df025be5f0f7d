#include "probes/ping_service.h"
#include "simulated/connections.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace netvane;
using namespace netvane::probes;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using State = platform::ConnectionState;

class TestPingService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.reset();
        m_clock = std::make_unique<simulated::ManualClock>();
        m_connections = std::make_unique<simulated::Connections>(*m_clock);
        m_service
            = std::make_unique<PingService>(u"192.0.2.1"_s, u"router"_s, *m_clock, *m_connections);
        m_log.take();
    }
    void cleanup() { m_service.reset(); }

    void startsOnceAndAnewAfterStop()
    {
        m_service->start();
        const NetworkMetrics initial {
            .timestamp = m_clock->now(), .packetLoss = 0, .target = u"router"_s};
        QCOMPARE(m_service->metrics(), std::vector {initial});
        QCOMPARE(m_service->currentMetrics(), std::optional(initial));
        QCOMPARE(m_log.take(), QStringList {u"PingService[router]: Starting with interval 3.0s"_s});
        finish(State::Ready);
        m_service->start();
        QCOMPARE(m_connections->made().size(), size_t(1));
        QCOMPARE(m_service->metrics().size(), size_t(2));
        m_service->stop();
        m_service->start();
        QCOMPARE(m_service->metrics(), std::vector {initial});
        QVERIFY(m_service->pingHistory().empty());
        QCOMPARE(m_service->pingCount(), 1);
        finish(State::Cancelled);
        QCOMPARE(last().packetLoss, std::optional(100.0));
        m_clock->advance(3s);
        for (const auto& host : {u"192.0.2.2"_s, u"192.0.2.2"_s})
            m_service->setTargetHost(host);
        QCOMPARE(m_connections->made().back()->host, u"192.0.2.2"_s);
        finish(State::Failed, {}, 1); // of the earlier target, which says nothing about this one
        QCOMPARE(m_service->metrics().size(), size_t(1));
    }

    void port()
    {
        const std::pair<QString, int> ports[] = {{u"dns.google"_s, 443}, {u"192.168.1.1"_s, 80}};
        for (const auto& [host, expected] : ports) {
            PingService service(host, u"x"_s, *m_clock, *m_connections);
            service.start();
            QCOMPARE(int(m_connections->made().back()->port), expected);
        }
    }

    void outcomes()
    {
        // Round trips in ms (-1: lost), jitter (-1: absent), loss, kept round trips.
        using Times = std::vector<double>;
        const std::tuple<Times, double, double, Times> rows[]
            = {{{10, 20, 15, -1}, 7.5, 25, {10, 20, 15}}, // a loss keeps the jitter
                {{-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 5}, -1, 90, {5}}, // the window moves on
                {{500, 30, 30, 30, 30, 30, 30, 30, 30, 30, 40}, 10.0 / 9, 0,
                    {30, 30, 30, 30, 30, 30, 30, 30, 30, 40}}}; // histories are bounded
        for (const auto& [times, jitter, loss, kept] : rows) {
            init();
            m_service->start();
            for (const double time : times) {
                const std::chrono::milliseconds latency(int(std::max(time, 0.0)));
                m_clock->advance(latency);
                finish(time < 0 ? State::Cancelled : State::Ready);
                m_clock->advance(3000ms - latency);
            }
            QCOMPARE(last().ping.value_or(-1), times.back());
            QVERIFY(std::abs(last().jitter.value_or(-1) - jitter) < 1e-9);
            QCOMPARE(last().packetLoss, std::optional(loss));
            QCOMPARE(m_service->pingHistory(), kept);
            QCOMPARE(m_service->metrics().size(), std::min(size_t(10), times.size() + 1));
            QCOMPARE(m_service->currentMetrics(), std::optional(last()));
        }
    }

    /// The main thread is busy and handles all events late, the timeout first.
    void timeout()
    {
        for (const int readyAt : {2999, 3100}) { // ms; each is delivered just before the timeout
            init();
            m_service->start();
            m_log.take();
            const auto& probe = *m_connections->made()[0];
            const auto ready = m_clock->monotonicNow() + std::chrono::milliseconds(readyAt);
            m_clock->advance(2999ms);
            probe.handler({State::Ready, ready, {}});
            m_clock->advance(501ms);
            QCoreApplication::sendPostedEvents();
            QVERIFY(probe.isCancelled);
            QCOMPARE(m_service->metrics().size(), size_t(2));
            const bool counts = readyAt < 3000;
            QCOMPARE(last().ping, counts ? std::optional(double(readyAt)) : std::nullopt);
            const QString line = u"PingService: Timeout waiting for connection to 192.0.2.1"_s;
            QCOMPARE(m_log.take(), counts ? QStringList {} : QStringList {line});
        }
    }

    void onlyTheFirstEndCounts()
    {
        m_service->start();
        m_log.take();
        finish(State::Failed, u"Connection refused"_s);
        finish(State::Cancelled);
        QCOMPARE(m_service->metrics().size(), size_t(2));
        QCOMPARE(m_log.take(),
            QStringList {u"PingService: Connection failed to 192.0.2.1: Connection refused"_s});
    }

    /// A failure that goes on is a line at first, and then one an hour, asleep or not.
    void failuresThatGoOn()
    {
        const QString line = u"PingService: Connection failed to 192.0.2.1: gone"_s;
        m_service->start();
        finish(State::Ready);
        for (int i = 0; i < 1199; ++i) {
            m_clock->advance(3s);
            finish(State::Failed, u"gone"_s);
        }
        QCOMPARE(m_log.take().filter(u"PingService:"_s), QStringList {line});
        m_clock->sleep(10s);
        for (const auto state : {State::Failed, State::Ready, State::Failed}) {
            m_clock->advance(3s);
            finish(state, u"gone"_s);
        }
        QCOMPARE(m_log.take().filter(u"PingService:"_s),
            (QStringList {line + u" (1200 times without an answer)"_s, line}));
    }

    void destroyedWithProbesInFlight()
    {
        m_service->start();
        m_clock->advance(3000ms);
        m_connections->tell(State::Failed, u"Connection refused"_s);
        m_log.take();
        m_service.reset();
        QVERIFY(m_connections->made()[1]->isCancelled);
        finish(State::Ready, {}, 1);
        QCOMPARE(m_log.take(), QStringList());
        QCOMPARE(m_clock->timerCount(), 0);
    }

    /// The result and the time of a connection that was open during a sleep mean nothing.
    void sleepCountsAsNothing()
    {
        for (const auto end : {State::Failed, State::Ready}) {
            init();
            m_service->start();
            m_clock->advance(10ms);
            m_clock->sleep(8h);
            m_service->probeAtOnce();
            finish(end, {}, 1);
            QCOMPARE(m_service->metrics().size(), size_t(1)); // the one of the start
            m_clock->advance(20ms);
            finish(State::Ready);
            QCOMPARE(last().packetLoss, 0.0);
            QCOMPARE(m_service->pingHistory(), std::vector {20.0});
            m_clock->advance(PingService::pingInterval - 21ms);
            QCOMPARE(m_connections->made().size(), size_t(2)); // the interval began anew
            m_clock->advance(1ms);
            QCOMPARE(m_connections->made().size(), size_t(3));
        }
    }

private:
    const NetworkMetrics& last() const { return m_service->metrics().back(); }

    void finish(State state, const QString& error = {}, size_t back = 0)
    {
        m_connections->tell(state, error, back);
        QCoreApplication::sendPostedEvents();
    }

    test::CapturedLog m_log;
    std::unique_ptr<simulated::ManualClock> m_clock;
    std::unique_ptr<simulated::Connections> m_connections;
    std::unique_ptr<PingService> m_service;
};

NETVANE_TEST(TestPingService)
#include "test_ping_service.moc"
