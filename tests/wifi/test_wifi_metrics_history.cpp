#include "simulated/manual_clock.h"
#include "support/test_main.h"
#include "wifi/wifi_metrics_history.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace netvane;
using namespace std::chrono_literals;

using Values = std::vector<double>;
using Optionals = std::vector<std::optional<int>>;

namespace {

Values valuesOf(const wifi::WiFiMetricsHistory::Series& series)
{
    Values values;
    for (const auto& point : series)
        values.push_back(point.value);
    return values;
}

} // namespace

class TestWiFiMetricsHistory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void series_data()
    {
        QTest::addColumn<Optionals>("readings");
        QTest::addColumn<Values>("expected");
        QTest::newRow("begins with two equal ones") << Optionals {-54, -54, -54} << Values {54, 54};
        QTest::newRow("comes again") << Optionals {-60, -58, -60} << Values {60, 58, 60};
        QTest::newRow("equal by magnitude") << Optionals {-60, -58, 58} << Values {60, 58};
        QTest::newRow("absent") << Optionals {-60, {}, -61} << Values {60, 61};
        QTest::newRow("eleven") << Optionals {-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11}
                                << Values {2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
        QTest::newRow("no magnitude of its own")
            << Optionals {std::numeric_limits<int>::min()} << Values {2147483648.0};
    }
    void series()
    {
        QFETCH(Optionals, readings);
        QFETCH(Values, expected);
        const simulated::ManualClock clock;
        wifi::WiFiMetricsHistory history(clock);
        for (const auto signal : readings)
            history.addDataPoint({}, signal, signal);
        QCOMPARE(valuesOf(history.signalHistory()), expected);
        QCOMPARE(valuesOf(history.noiseHistory()), expected);
        QVERIFY(history.linkRateHistory().empty());
    }

    void publishesWhatChanged()
    {
        simulated::ManualClock clock;
        wifi::WiFiMetricsHistory history(clock);
        const QSignalSpy rates(&history, &wifi::WiFiMetricsHistory::linkRateHistoryChanged);
        const QSignalSpy strengths(&history, &wifi::WiFiMetricsHistory::signalHistoryChanged);
        history.addDataPoint(0, {}, -92);
        clock.advance(5s);
        history.addDataPoint(-6, -50, -92);
        history.addDataPoint(-6, {}, -92);
        QCOMPARE(valuesOf(history.linkRateHistory()), (Values {0, -6}));
        QCOMPARE(rates.count(), 2);
        QCOMPARE(strengths.count(), 1);
        QCOMPARE(history.signalHistory().back().timestamp, clock.now());
    }
};

NETVANE_TEST(TestWiFiMetricsHistory)
#include "test_wifi_metrics_history.moc"
