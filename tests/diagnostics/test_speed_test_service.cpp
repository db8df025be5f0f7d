#include "diagnostics/speed_test_json.h"
#include "diagnostics/speed_test_service.h"
#include "simulated/connections.h"
#include "simulated/desktop.h"
#include "simulated/http.h"
#include "simulated/manual_clock.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kSize = 5'000'000;

/// The router's probe, whose round trips are told by hand.
class Router {
public:
    explicit Router(simulated::ManualClock& clock)
        : m_clock(clock)
    {
    }

    /// Until the value is published; absent: the probe fails.
    void publish(std::optional<std::chrono::milliseconds> ping)
    {
        service.stop();
        service.start();
        m_clock.advance(ping.value_or(1ms));
        m_connections.tell(
            ping ? platform::ConnectionState::Ready : platform::ConnectionState::Failed);
        QCoreApplication::processEvents();
        m_clock.advance(probes::PingService::publishInterval);
    }

private:
    simulated::ManualClock& m_clock;
    simulated::Connections m_connections {m_clock};

public:
    probes::PingService service {u"192.0.2.1"_s, u"router"_s, m_clock, m_connections};
};

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
        QSignalSpy running(m_service.get(), &SpeedTestService::isRunningChanged);
        QVERIFY(!m_service->isRunning() && !m_service->result());
        m_service->runSpeedTest(nullptr);
        m_service->runSpeedTest(nullptr); // ignored
        QVERIFY(m_service->isRunning());
        QCOMPARE(m_transfers.started.size(), size_t(1));
        const auto download = m_transfers.started[0]->request;
        QCOMPARE(download.url, QUrl(u"https://speed.test/__down?bytes=5000000"_s));
        QVERIFY(!download.uploadSize);
        end(2s, {.receivedBytes = kSize});
        QCOMPARE(m_transfers.started.size(), size_t(2));
        QVERIFY(m_transfers.started[0]->isGone);
        const auto upload = m_transfers.started[1]->request;
        QCOMPARE(upload.url, QUrl(u"https://speed.test/__up"_s));
        QCOMPARE(upload.uploadSize, kSize);
        for (const auto& request : {download, upload}) {
            QCOMPARE(request.answerLimit, 4 * kSize);
            QCOMPARE(request.silenceLimit, 60s);
        }
        QVERIFY(!m_service->result() && m_service->isRunning());
        end(4s, {.receivedBytes = 17});

        QVERIFY(!m_service->isRunning());
        const SpeedTestResult result = m_service->result().value();
        QVERIFY(!result.id.isNull());
        QCOMPARE(result.timestamp, m_clock.now());
        const SpeedTestResult expected {.id = result.id,
            .timestamp = result.timestamp,
            .downloadSpeed = 20.0,
            .uploadSpeed = 10.0};
        QCOMPARE(result, expected);
        QCOMPARE(running.size(), 2);
        QCOMPARE(m_log.take(), QStringList());
    }

    void whatFails_data()
    {
        QTest::addColumn<qint64>("received");
        QTest::addColumn<QString>("downloadError");
        QTest::addColumn<QString>("uploadError");
        QTest::addColumn<bool>("hasDownload");
        QTest::newRow("nothing came") << qint64(0) << u""_s << u""_s << false;
        QTest::newRow("less came") << qint64(1) << u""_s << u""_s << true;
        QTest::newRow("download") << kSize << u"cut"_s << u""_s << false;
        QTest::newRow("upload") << kSize << u""_s << u"cut"_s << true;
        QTest::newRow("both") << qint64(0) << u"cut"_s << u"again"_s << false;
    }
    void whatFails()
    {
        QFETCH(qint64, received);
        QFETCH(QString, downloadError);
        QFETCH(QString, uploadError);
        const auto outcome = [received](const QString& error) {
            return platform::TransferOutcome {.receivedBytes = received,
                .errorText = error.isEmpty() ? std::nullopt : std::optional(error)};
        };
        m_service->runSpeedTest(nullptr);
        end(1s, outcome(downloadError));
        end(1s, outcome(uploadError));
        QTEST(m_service->result()->downloadSpeed.has_value(), "hasDownload");
        QCOMPARE(m_service->result()->uploadSpeed.has_value(), uploadError.isEmpty());
        QStringList lines;
        if (!downloadError.isEmpty())
            lines += u"SpeedTestService: Download test error: "_s + downloadError;
        if (!uploadError.isEmpty())
            lines += u"SpeedTestService: Upload test error: "_s + uploadError;
        QCOMPARE(m_log.take(), lines);
        QCOMPARE(m_service->history(), std::vector {*m_service->result()});
    }

    void noTimeGivesNoSpeed()
    {
        m_service->runSpeedTest(nullptr);
        end(0s, {.receivedBytes = kSize});
        end(0s, {});
        QVERIFY(!m_service->result()->downloadSpeed && !m_service->result()->uploadSpeed);
        QVERIFY(stored());
    }

    void readsTheRouterThreeTimes_data()
    {
        QTest::addColumn<QList<int>>("pings"); // before, after the download, after the upload
        QTest::addColumn<QList<int>>("expected"); // ms; 0: absent
        QTest::newRow("all") << QList {10, 35, 12} << QList {10, 35, 12};
        QTest::newRow("none during") << QList {10, 0, 30} << QList {10, 30, 30};
        QTest::newRow("none before") << QList {0, 35, 12} << QList {0, 35, 12};
        QTest::newRow("none after") << QList {10, 35, 0} << QList {10, 35, 0};
        QTest::newRow("none but before") << QList {10, 0, 0} << QList {10, 0, 0};
    }
    void readsTheRouterThreeTimes()
    {
        QFETCH(QList<int>, pings);
        Router router(m_clock);
        const auto publish = [&](int ms) {
            router.publish(ms == 0 ? std::nullopt : std::optional(std::chrono::milliseconds(ms)));
        };
        publish(pings[0]);
        m_service->runSpeedTest(&router.service);
        publish(pings[1]);
        end(1s, {.receivedBytes = kSize});
        publish(pings[2]);
        end(1s, {});
        const auto& result = *m_service->result();
        QTEST((QList {whole(result.pingBefore), whole(result.pingDuring), whole(result.pingAfter)}),
            "expected");
    }

    void theProbeMayGoFirst()
    {
        auto router = std::make_unique<Router>(m_clock);
        router->publish(10ms);
        m_service->runSpeedTest(&router->service);
        router.reset();
        end(1s, {.receivedBytes = kSize});
        end(1s, {});
        QCOMPARE(whole(m_service->result()->pingBefore), 10);
        QVERIFY(!m_service->result()->pingAfter);
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
        QSignalSpy changed(m_service.get(), &SpeedTestService::historyChanged);
        for (int count = 0; count < 21; ++count) {
            m_service->runSpeedTest(nullptr);
            m_clock.setWall(m_clock.now() + 100ms + 7ns);
            end(1s, {.receivedBytes = kSize + count});
            end(1s, {});
        }
        QCOMPARE(changed.size(), 21);
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
        const QStringList lines = m_log.take();
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines[0].startsWith(u"SpeedTestService: Failed to load history: "));
        QVERIFY(!m_defaults.values.contains(SpeedTestService::historyKey));
        make();
        QCOMPARE(m_log.take(), QStringList());
    }

    void whatCannotBeSavedLeavesTheOldHistory()
    {
        m_service->saveHistory();
        m_service->setHistory({{.pingAfter = INFINITY}});
        m_service->saveHistory();
        const QStringList lines = m_log.take();
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines[0].startsWith(u"SpeedTestService: Failed to save history: "));
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
