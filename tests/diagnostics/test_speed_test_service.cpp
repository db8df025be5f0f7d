#include "diagnostics/speed_test_json.h"
#include "diagnostics/speed_test_service.h"
#include "simulated/connections.h"
#include "simulated/desktop.h"
#include "simulated/http.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QTest>

#include <cmath>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kSize = 5'000'000;

} // namespace

class TestSpeedTestService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_transfers.started.clear();
        m_defaults.values.clear();
        make();
        m_log.take();
    }

    void asksForTheSameBytesBothWays()
    {
        m_service->runSpeedTest(nullptr);
        m_service->runSpeedTest(nullptr); // ignored
        end(2s, {.receivedBytes = kSize});
        QVERIFY(m_transfers.started[0]->isGone && m_service->isRunning() && !m_service->result());
        end(4s, {.receivedBytes = 17});
        QCOMPARE(m_transfers.started.size(), size_t(2));
        const auto& download = m_transfers.started[0]->request;
        const auto& upload = m_transfers.started[1]->request;
        QCOMPARE(download.url, QUrl(u"https://speed.test/__down?bytes=5000000"_s));
        QCOMPARE(upload.url, QUrl(u"https://speed.test/__up"_s));
        QVERIFY(!download.uploadSize && upload.uploadSize == kSize);
        for (const auto& request : {download, upload})
            QVERIFY(request.answerLimit == 4 * kSize && request.silenceLimit == 60s);

        QVERIFY(!m_service->isRunning());
        const SpeedTestResult result = m_service->result().value();
        QVERIFY(!result.id.isNull());
        QCOMPARE(result,
            (SpeedTestResult {.id = result.id,
                .timestamp = m_clock.now(),
                .downloadSpeed = 20.0,
                .uploadSpeed = 10.0}));
        QCOMPARE(m_log.take(), QStringList());
    }

    void failures_data()
    {
        QTest::addColumn<platform::TransferOutcome>("download");
        QTest::addColumn<platform::TransferOutcome>("upload");
        QTest::addColumn<bool>("hasDownload");
        QTest::addColumn<QStringList>("lines");
        using Outcome = platform::TransferOutcome;
        const Outcome cut {.receivedBytes = kSize, .errorText = u"cut"_s};
        const QString down = u"SpeedTestService: Download test error: cut"_s;
        const QString up = u"SpeedTestService: Upload test error: cut"_s;
        QTest::newRow("nothing came") << Outcome() << Outcome() << false << QStringList();
        QTest::newRow("upload") << Outcome {.receivedBytes = 1} << cut << true << QStringList(up);
        QTest::newRow("both") << cut << cut << false << QStringList {down, up};
    }
    void failures()
    {
        QVERIFY(!megabitsPerSecond(kSize, 0s));
        QFETCH(platform::TransferOutcome, download);
        QFETCH(platform::TransferOutcome, upload);
        m_service->runSpeedTest(nullptr);
        end(1s, download);
        end(1s, upload);
        QTEST(m_service->result()->downloadSpeed.has_value(), "hasDownload");
        QCOMPARE(m_service->result()->uploadSpeed.has_value(), !upload.errorText);
        QTEST(m_log.take(), "lines");
        QCOMPARE(m_service->history(), std::vector {*m_service->result()});
    }

    void readsTheRouterThreeTimes_data()
    {
        // In ms; before, after the download, after the upload. 0: absent.
        QTest::addColumn<QList<int>>("pings");
        QTest::addColumn<QList<int>>("expected");
        QTest::newRow("none during") << QList {10, 0, 30} << QList {10, 30, 30};
        QTest::newRow("none before") << QList {0, 35, 12} << QList {0, 35, 12};
        QTest::newRow("none but before") << QList {10, 0, 0} << QList {10, 0, 0};
    }
    void readsTheRouterThreeTimes()
    {
        QFETCH(QList<int>, pings);
        simulated::Connections connections(m_clock);
        auto router = std::make_unique<probes::PingService>(
            u"192.0.2.1"_s, u"router"_s, m_clock, connections);
        const auto publish = [&](int ms) {
            router->stop();
            router->start();
            m_clock.advance(std::chrono::milliseconds(ms));
            connections.tell(
                ms ? platform::ConnectionState::Ready : platform::ConnectionState::Failed);
            QCoreApplication::processEvents();
            m_clock.advance(probes::PingService::publishInterval);
        };
        publish(pings[0]);
        m_service->runSpeedTest(router.get());
        publish(pings[1]);
        end(1s, {.receivedBytes = kSize});
        publish(pings[2]);
        if (pings[2] == 0)
            router.reset(); // it may end first
        end(1s, {});
        const auto& result = *m_service->result();
        QTEST((QList {whole(result.pingBefore), whole(result.pingDuring), whole(result.pingAfter)}),
            "expected");
    }

    void cancelling()
    {
        m_service->cancelTest();
        m_service->runSpeedTest(nullptr);
        m_service->cancelTest();
        QVERIFY(m_transfers.started.back()->isGone && !m_service->isRunning());
        m_service->runSpeedTest(nullptr);
        end(1s, {.receivedBytes = kSize});
        m_service->cancelTest();
        QVERIFY(m_transfers.started.back()->isGone && !m_service->isRunning());
        QVERIFY(!m_service->result() && m_service->history().empty() && !stored());
        m_service->runSpeedTest(nullptr);
        m_service.reset();
        QVERIFY(m_transfers.started.back()->isGone);
    }

    void historySurvives()
    {
        for (int count = 0; count < 21; ++count) {
            m_service->runSpeedTest(nullptr);
            m_clock.setWall(m_clock.now() + 100ms + 7ns);
            end(1s, {.receivedBytes = kSize + count});
            end(1s, {});
        }
        const auto history = m_service->history();
        QCOMPARE(history.size(), size_t(20));
        QCOMPARE(history.front(), *m_service->result());
        QCOMPARE(history.back().downloadSpeed, double(kSize + 1) * 8 / 1e6);
        make();
        QCOMPARE(m_service->history(), history);
        QVERIFY(!m_service->result());

        m_service->setHistory({});
        m_service->saveHistory();
        QCOMPARE(stored(), u"[]"_s);
        make();
        QVERIFY(m_service->history().empty());
    }

    void badHistoryIsDroppedOnce()
    {
        m_defaults.setText(SpeedTestService::historyKey, u"[{}]"_s);
        make();
        QVERIFY(m_log.take().join(u'|').startsWith(u"SpeedTestService: Failed to load history: "));
        QVERIFY(!stored());
        make();
        QCOMPARE(m_log.take(), QStringList());
    }

    void whatCannotBeSavedLeavesTheOldHistory()
    {
        m_service->saveHistory();
        m_service->setHistory({{.pingAfter = INFINITY}});
        m_service->saveHistory();
        QVERIFY(m_log.take().join(u'|').startsWith(u"SpeedTestService: Failed to save history: "));
        QCOMPARE(stored(), u"[]"_s);
    }

private:
    void make()
    {
        m_service = std::make_unique<SpeedTestService>(
            m_transfers, m_defaults, m_clock, QUrl(u"https://speed.test"_s));
    }
    /// Ends the transfer under way so long after now, and tells it a little later.
    void end(std::chrono::milliseconds elapsed, platform::TransferOutcome outcome)
    {
        outcome.endedAt = m_clock.monotonicNow() + elapsed;
        m_clock.advance(elapsed + 300ms);
        m_transfers.end(outcome);
    }
    std::optional<QString> stored() const { return m_defaults.text(SpeedTestService::historyKey); }
    static int whole(std::optional<double> ms) { return int(std::lround(ms.value_or(0))); }

    test::CapturedLog m_log;
    simulated::ManualClock m_clock;
    simulated::HttpTransfers m_transfers {m_clock};
    simulated::UserDefaults m_defaults;
    std::unique_ptr<SpeedTestService> m_service;
};

NETVANE_TEST(TestSpeedTestService)
#include "test_speed_test_service.moc"
