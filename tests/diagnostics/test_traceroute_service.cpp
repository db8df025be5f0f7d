#include "diagnostics/traceroute_service.h"
#include "probes/probe_targets.h"
#include "simulated/connections.h"
#include "simulated/manual_clock.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using State = platform::ConnectionState;

namespace {

const QString kTarget = u"host.example"_s;
const QString kRouter = u"10.0.0.1"_s;

/// "10.0.0.1 12.5 complete"
QString summary(const TracerouteHop& hop)
{
    return hop.ipAddress + u' ' + (hop.latency ? QString::number(*hop.latency) : u"-"_s)
        + (hop.isComplete ? u" complete"_s : QString());
}

} // namespace

class TestTracerouteService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.reset();
        m_clock = std::make_unique<simulated::ManualClock>();
        m_network = std::make_unique<simulated::Connections>(*m_clock);
        m_service = std::make_unique<TracerouteService>(*m_clock, *m_network);
    }

    /// Each letter is what becomes of one probe: r and s two routers, t the target, each after as
    /// many ms as the probe's number; - silence, x refused at once, l an answer that comes too
    /// late.
    void traces_data()
    {
        QTest::addColumn<QByteArray>("answers");
        QTest::addColumn<QStringList>("hops");
        const QString silent = u"Timeout -"_s;
        QTest::newRow("target at once") << "ttt"_ba << QStringList {kTarget + u" 2 complete"_s};
        QTest::newRow("on the way")
            << "rrrttt"_ba << QStringList {u"10.0.0.1 2 complete"_s, kTarget + u" 2 complete"_s};
        QTest::newRow("some probes are lost")
            << "r-rt-x"_ba << QStringList {u"10.0.0.1 2"_s, kTarget + u" 1 complete"_s};
        QTest::newRow("the first that answers names the hop")
            << "-srttt"_ba << QStringList {u"10.0.0.2 2.5"_s, kTarget + u" 2 complete"_s};
        QTest::newRow("nobody") << QByteArray(12, '-') << QStringList(4, silent);
        QTest::newRow("refused everywhere") << QByteArray(12, 'x') << QStringList(4, silent);
        QTest::newRow("too late") << QByteArray(12, 'l') << QStringList(4, silent);
        QTest::newRow("silent start")
            << "---------ttt"_ba
            << QStringList {silent, silent, silent, kTarget + u" 2 complete"_s};
        QTest::newRow("silent later")
            << "rrrrrrrrrrrr---"_ba
            << QStringList(4, u"10.0.0.1 2 complete"_s) + QStringList {silent};
        QTest::newRow("no end in sight")
            << QByteArray(90, 'r') << QStringList(30, u"10.0.0.1 2 complete"_s);
    }
    void traces()
    {
        QFETCH(QByteArray, answers);
        QSignalSpy published(m_service.get(), &TracerouteService::hopsChanged);
        start(kTarget);
        for (qsizetype i = 0; i < answers.size(); ++i) {
            QCOMPARE(qsizetype(m_network->made().size()), i + 1);
            const auto& probe = *m_network->made().back();
            QVERIFY(probe.isStarted);
            QCOMPARE(probe.host, kTarget);
            QCOMPARE(probe.hopLimit, int(i / 3 + 1));
            QCOMPARE(int(probe.port), 33435 + int(i % 3));
            QVERIFY(m_service->isRunning());
            play(answers[i], std::chrono::milliseconds(i % 3 + 1));
            QVERIFY(probe.isCancelled);
            QCOMPARE(published.count(), int(i / 3)); // not before the pause is over
            m_clock->advance(99ms);
            QCOMPARE(qsizetype(m_network->made().size()), i + 1);
            m_clock->advance(1ms);
        }
        QTEST(hops(), "hops");
        for (int i = 0; i < int(m_service->hops().size()); ++i)
            QCOMPARE(m_service->hops()[size_t(i)].hopNumber, i + 1);
        QVERIFY(!m_service->isRunning());
        QCOMPARE(m_clock->timerCount(), 0);
        QCOMPARE(qsizetype(m_network->made().size()), answers.size());
    }

    void hostsWithoutADot()
    {
        for (const auto& host : {QString(), u"localhost"_s, u"2001:db8::1"_s}) {
            const QSignalSpy running(m_service.get(), &TracerouteService::isRunningChanged);
            start(host);
            QCOMPARE(running.count(), 2);
            QVERIFY(!m_service->isRunning());
            QVERIFY(m_service->hops().empty() && m_network->made().empty());
            QCOMPARE(m_service->targetHost(), host);
        }
    }

    /// The answer came while the main thread was busy, which hears of the timeout first.
    void busyMainThread()
    {
        start(kTarget);
        const auto at = m_clock->monotonicNow() + 12'300us;
        m_network->tell({State::Ready, at, {}, kTarget});
        m_clock->advance(10s);
        QCoreApplication::sendPostedEvents();
        m_clock->advance(100ms);
        for (const char each : {'-', '-'}) {
            play(each, 0ms);
            m_clock->advance(100ms);
        }
        QCOMPARE(hops(), QStringList {kTarget + u" 12.3 complete"_s});
    }

    /// The hop under way is completed, without pauses, and is the last.
    void stopping_data()
    {
        QTest::addColumn<bool>("inPause");
        QTest::newRow("during a probe") << false;
        QTest::newRow("in a pause") << true;
    }
    void stopping()
    {
        QFETCH(bool, inPause);
        start(kTarget);
        if (inPause)
            play('r', 5ms);
        m_service->stopTrace();
        QVERIFY(!m_service->isRunning());
        if (!inPause)
            play('r', 5ms);
        for (int probe = 2; probe <= 3; ++probe) {
            m_clock->advance(0ms);
            QCOMPARE(int(m_network->made().size()), probe);
            play('r', 5ms);
        }
        m_clock->advance(0ms);
        QCOMPARE(hops(), QStringList {u"10.0.0.1 5 complete"_s});
        m_clock->advance(10s);
        QCOMPARE(m_network->made().size(), size_t(3));
        QCOMPARE(m_clock->timerCount(), 0);
    }

    /// Neither the answers of a stopped trace nor its end touch the one that follows.
    void startedAgainAtOnce()
    {
        start(kTarget);
        play('r', 5ms);
        m_clock->advance(100ms);
        m_network->answer(kTarget); // on its way to the main thread
        m_service->stopTrace();
        m_service->startTrace(u"other.example"_s);
        QVERIFY(m_network->made()[1]->isCancelled);
        QCoreApplication::sendPostedEvents();
        m_clock->advance(0ms);
        QCOMPARE(m_network->made().size(), size_t(3));
        for (int probe = 0; probe < 3; ++probe) {
            play('s', 7ms);
            m_clock->advance(100ms);
        }
        QCOMPARE(hops(), QStringList {u"10.0.0.2 7 complete"_s});
        QVERIFY(m_service->isRunning());
        QCOMPARE(m_network->made().back()->hopLimit, 2);
    }

    /// Whoever is told of a hop may stop the trace and begin another right there.
    void startedAgainByAnObserver()
    {
        connect(m_service.get(), &TracerouteService::hopsChanged, m_service.get(), [this] {
            if (m_service->hops().empty())
                return;
            m_service->stopTrace();
            m_service->startTrace(u"other.example"_s);
        });
        start(kTarget);
        for (int probe = 0; probe < 3; ++probe) {
            play('t', 1ms);
            m_clock->advance(100ms);
        }
        QVERIFY(m_service->isRunning() && m_service->hops().empty());
        QCOMPARE(m_network->made().size(), size_t(4));
        QCOMPARE(m_network->made().back()->host, u"other.example"_s);
    }

    void destroyedUnderWay()
    {
        start(kTarget);
        m_network->answer(kTarget);
        m_service.reset();
        QVERIFY(m_network->made().back()->isCancelled);
        QCoreApplication::sendPostedEvents();
        m_network->tell(State::Cancelled);
        QCOMPARE(m_clock->timerCount(), 0);
    }

private:
    void start(const QString& host)
    {
        m_service->startTrace(host);
        m_clock->advance(0ms);
    }

    void play(char answer, std::chrono::milliseconds after)
    {
        if (answer == '-' || answer == 'l') {
            m_clock->advance(TracerouteService::timeoutPerHop - 1ms);
            if (answer == 'l')
                m_network->tell({State::Ready, m_clock->monotonicNow() + 1ms, {}, kTarget});
            m_clock->advance(1ms);
        } else if (answer == 'x') {
            m_network->tell(State::Failed, u"No route to host"_s);
        } else {
            m_clock->advance(after);
            m_network->answer(answer == 't' ? kTarget : answer == 'r' ? kRouter : u"10.0.0.2"_s);
        }
        QCoreApplication::sendPostedEvents();
    }

    QStringList hops() const
    {
        QStringList all;
        for (const auto& hop : m_service->hops())
            all += summary(hop);
        return all;
    }

    std::unique_ptr<simulated::ManualClock> m_clock;
    std::unique_ptr<simulated::Connections> m_network;
    std::unique_ptr<TracerouteService> m_service;
};

NETVANE_TEST(TestTracerouteService)
#include "test_traceroute_service.moc"
