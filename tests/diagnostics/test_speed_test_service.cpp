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
        m_http.pending.clear();
        m_defaults.values.clear();
        make();
        m_log.take();
    }

    void asksForTheSameBytesBothWays()
    {
        m_service->runSpeedTest(nullptr);
        m_service->runSpeedTest(nullptr); // ignored
        QCOMPARE(m_http.pending.size(), size_t(1));
        const auto download = m_http.pending.front().request;
        end(2s, {.receivedBytes = kSize});
        QVERIFY(m_service->isRunning() && !m_service->result());
        const auto upload = m_http.pending.front().request;
        end(4s, {.receivedBytes = 17});
        QVERIFY(m_http.pending.empty());
        QCOMPARE(download.url, QUrl(u"https://speed.test/__down?bytes=5000000"_s));
        QCOMPARE(upload.url, QUrl(u"https://speed.test/__up"_s));
        QVERIFY(!download.uploadSize && upload.uploadSize == kSize);
        QVERIFY(download.keepsConnection && !upload.keepsConnection); // the second uses the first's
        for (const auto& request : {download, upload})
            QVERIFY(request.bodyLimit == 4 * kSize && request.silenceLimit == 60s
                && !request.timeLimit && !request.keepsBody);

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

    void failures()
    {
        QVERIFY(!megabitsPerSecond(kSize, 0s));
        const platform::HttpAnswer cut {.receivedBytes = kSize, .errorText = u"cut"_s};
        for (const bool hasDownload : {true, false}) {
            m_service->runSpeedTest(nullptr);
            end(1s, hasDownload ? platform::HttpAnswer {.receivedBytes = 1} : cut);
            end(1s, cut);
            QCOMPARE(m_service->result()->downloadSpeed.has_value(), hasDownload);
            QVERIFY(!m_service->result()->uploadSpeed);
        }
        const QString up = u"SpeedTestService: Upload test error: cut"_s;
        QCOMPARE(
            m_log.take(), (QStringList {up, u"SpeedTestService: Download test error: cut"_s, up}));
        QCOMPARE(m_service->history().size(), size_t(2));
    }

    /// Before, after the download and after the upload.
    void readsTheRouterThreeTimes()
    {
        simulated::Connections connections(m_clock);
        auto router = std::make_unique<probes::PingService>(
            u"192.0.2.1"_s, u"router"_s, m_clock, connections);
        const auto publish = [&](int ms) {
            m_clock.advance(std::chrono::milliseconds(ms));
            connections.tell(platform::ConnectionState::Ready);
            QCoreApplication::processEvents();
            m_clock.advance(probes::PingService::publishInterval);
        };
        router->start();
        publish(10);
        m_service->runSpeedTest(router.get());
        m_http.pending.front().request.notice(); // it is asked in the middle of the download
        publish(35);
        end(1s, {.receivedBytes = kSize});
        router->probeAtOnce();
        publish(12);
        end(1s, {});
        const auto& result = *m_service->result();
        QCOMPARE(
            (QList {whole(result.pingBefore), whole(result.pingDuring), whole(result.pingAfter)}),
            (QList {10, 35, 12}));
        m_service->runSpeedTest(router.get());
        router.reset(); // it may end first
        end(1s, {.receivedBytes = kSize});
        end(1s, {});
        QVERIFY(!m_service->isRunning());
    }

    void cancelling()
    {
        m_service->runSpeedTest(nullptr);
        end(1s, {.receivedBytes = kSize});
        m_service->cancelTest();
        QVERIFY(!m_http.pending.back().owner && !m_service->isRunning());
        QVERIFY(!m_service->result() && m_service->history().empty() && !stored());
        m_service->runSpeedTest(nullptr);
        m_service.reset();
        QVERIFY(!m_http.pending.back().owner);
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
    }

    void whatTheOtherProgramStoredIsKept()
    {
        const SpeedTestResult other {.id = QUuid::createUuid(), .downloadSpeed = 1.5};
        m_defaults.setText(SpeedTestService::historyKey,
            withSpeedTest(other, {}, SpeedTestService::maxHistoryCount));
        m_service->runSpeedTest(nullptr);
        end(1s, {.receivedBytes = kSize});
        end(1s, {});
        make();
        QCOMPARE(m_service->history().size(), size_t(2));
        QCOMPARE(m_service->history().back(), other);
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
            m_http, m_defaults, m_clock, QUrl(u"https://speed.test"_s));
    }
    /// Ends the transfer under way so long after now, and tells it a little later.
    void end(std::chrono::milliseconds elapsed, platform::HttpAnswer outcome)
    {
        outcome.endedAt = m_clock.monotonicNow() + elapsed;
        m_clock.advance(elapsed + 300ms);
        m_http.answer(outcome);
    }
    std::optional<QString> stored() const { return m_defaults.text(SpeedTestService::historyKey); }
    static int whole(std::optional<double> ms) { return int(std::lround(ms.value_or(0))); }

    test::CapturedLog m_log;
    simulated::ManualClock m_clock;
    simulated::HttpClient m_http {m_clock};
    simulated::UserDefaults m_defaults;
    std::unique_ptr<SpeedTestService> m_service;
};

NETVANE_TEST(TestSpeedTestService)
#include "test_speed_test_service.moc"
