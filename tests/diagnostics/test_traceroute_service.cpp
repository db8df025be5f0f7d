#include "diagnostics/traceroute_service.h"
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

    /// Each letter is the answer to one probe: r and s two routers, t the target, each after as
    /// many ms as the probe's number; - silence, x refused at once, l an answer that comes too
    /// late.
    void traces_data()
    {
        QTest::addColumn<QByteArray>("answers");
        QTest::addColumn<QStringList>("hops");
        QTest::addColumn<QString>("earlyEnd");
        const QString silent = u"Timeout -"_s;
        const QString router = u"10.0.0.1 2 complete"_s;
        const QString target = kTarget + u" 2 complete"_s;
        QTest::newRow("some probes are lost")
            << "r-rt-x"_ba << QStringList {u"10.0.0.1 2"_s, kTarget + u" 1 complete"_s}
            << QString();
        QTest::newRow("the first that answers names the hop")
            << "-srttt"_ba << QStringList {u"10.0.0.2 2.5"_s, target} << QString();
        QTest::newRow("nobody, refused, too late")
            << "---xxxlll---"_ba << QStringList(4, silent)
            << u"Hop 4 did not answer; the trace ends there"_s;
        QTest::newRow("nothing can be sent") << QByteArray(12, 'x') << QStringList(4, silent)
                                             << u"No probe could be sent: No route to host"_s;
        QTest::newRow("no end in sight") << QByteArray(90, 'r') << QStringList(30, router)
                                         << u"The target was not reached within 30 hops"_s;
    }
    void traces()
    {
        QFETCH(QByteArray, answers);
        QSignalSpy published(m_service.get(), &TracerouteService::hopsChanged);
        start(kTarget);
        for (int i = 0; i < int(answers.size()); ++i) {
            QCOMPARE(probes(), i + 1);
            const auto& probe = *m_network->made().back();
            QVERIFY(probe.isStarted && m_service->isRunning());
            QCOMPARE(probe.host, kTarget);
            QCOMPARE(probe.hopLimit, i / 3 + 1);
            QCOMPARE(int(probe.port), 33435 + i % 3);
            play(answers[i], std::chrono::milliseconds(i % 3 + 1));
            QVERIFY(probe.isCancelled);
            QCOMPARE(published.count(), i / 3); // not before the pause is over
            m_clock->advance(99ms);
            QCOMPARE(probes(), i + 1);
            m_clock->advance(1ms);
        }
        QTEST(hops(), "hops");
        QTEST(m_service->earlyEnd(), "earlyEnd");
        QCOMPARE(m_service->hops().back().hopNumber, int(m_service->hops().size()));
        QVERIFY(!m_service->isRunning());
        QCOMPARE(m_clock->timerCount(), 0);
    }

    /// Past routers that are silent.
    void wholeWay_data()
    {
        QTest::addColumn<QByteArray>("answers");
        QTest::addColumn<QString>("earlyEnd");
        QTest::newRow("silent routers") << QByteArray(27, '-') + "ttt" << QString();
        QTest::newRow("a silent host")
            << QByteArray(90, '-') << u"The target was not reached within 30 hops"_s;
        QTest::newRow("no address") << "xxx"_ba << u"No probe could be sent: No route to host"_s;
    }
    void wholeWay()
    {
        QFETCH(QByteArray, answers);
        m_service
            = std::make_unique<TracerouteService>(*m_clock, *m_network, TraceExtent::WholeWay);
        start(kTarget);
        playAll(answers);
        QVERIFY(!m_service->isRunning());
        QTEST(m_service->earlyEnd(), "earlyEnd");
        QCOMPARE(m_service->hops().size(), size_t(answers.size()) / 3);
    }

    /// The answer came while the main thread was busy, which hears of the timeout first. What the
    /// resolver took is not counted.
    void busyMainThread()
    {
        start(kTarget);
        const auto now = m_clock->monotonicNow();
        m_network->tell({State::Ready, now + 72'300us, {}, kTarget, now + 60ms});
        m_clock->advance(10s);
        QCoreApplication::sendPostedEvents();
        m_clock->advance(100ms);
        playAll("--");
        QCOMPARE(hops(), QStringList {kTarget + u" 12.3 complete"_s});
    }

    /// The hop under way is completed, without pauses, and is the last.
    void stopping()
    {
        start(kTarget);
        m_service->stopTrace();
        QVERIFY(!m_service->isRunning());
        for (int probe = 1; probe <= 3; ++probe) {
            m_clock->advance(0ms);
            QCOMPARE(probes(), probe);
            play('r', 5ms);
        }
        m_clock->advance(0ms);
        QCOMPARE(hops(), QStringList {u"10.0.0.1 5 complete"_s});
        m_clock->advance(10s);
        QCOMPARE(probes(), 3);
        QCOMPARE(m_clock->timerCount(), 0);
    }

    /// Neither the answers of a stopped trace nor its end touch the one that follows.
    void startedAgainAtOnce()
    {
        start(kTarget);
        playAll("r");
        m_network->answer(kTarget); // on its way to the main thread
        m_service->stopTrace();
        m_service->startTrace(u"other.example"_s);
        QVERIFY(m_network->made()[1]->isCancelled);
        QCoreApplication::sendPostedEvents();
        m_clock->advance(0ms);
        QCOMPARE(probes(), 3);
        playAll("sss");
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
        playAll("ttt");
        QVERIFY(m_service->isRunning() && m_service->hops().empty());
        QCOMPARE(probes(), 4);
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
    int probes() const { return int(m_network->made().size()); }

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
            m_network->answer(answer == 't' ? kTarget
                    : answer == 'r'         ? u"10.0.0.1"_s
                                            : u"10.0.0.2"_s);
        }
        QCoreApplication::sendPostedEvents();
    }
    /// With the pauses after each.
    void playAll(const char* answers)
    {
        for (; *answers; ++answers) {
            play(*answers, 7ms);
            m_clock->advance(100ms);
        }
    }

    /// Each as "10.0.0.1 12.5 complete".
    QStringList hops() const
    {
        QStringList all;
        for (const auto& hop : m_service->hops())
            all += hop.ipAddress + u' ' + (hop.latency ? QString::number(*hop.latency) : u"-"_s)
                + (hop.isComplete ? u" complete"_s : QString());
        return all;
    }

    std::unique_ptr<simulated::ManualClock> m_clock;
    std::unique_ptr<simulated::Connections> m_network;
    std::unique_ptr<TracerouteService> m_service;
};

NETVANE_TEST(TestTracerouteService)
#include "test_traceroute_service.moc"
