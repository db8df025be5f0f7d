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
    void series()
    {
        const std::pair<Optionals, Values> rows[] = {
            {{-54, -54, -54}, {54, 54}}, // begins with two equal ones
            {{-60, -58, -60}, {60, 58, 60}},
            {{-60, -58, 58}, {60, 58}}, // equal by magnitude
            {{-60, {}, -61}, {60, 61}},
            {{-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11}, {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
            {{std::numeric_limits<int>::min()}, {2147483648.0}},
        };
        for (const auto& [readings, expected] : rows) {
            wifi::WiFiMetricsHistory history(m_clock);
            for (const auto signal : readings)
                history.addDataPoint({}, signal, {});
            QCOMPARE(valuesOf(history.signalHistory()), expected);
        }
    }

    void eachSeriesIsItsOwn()
    {
        wifi::WiFiMetricsHistory history(m_clock);
        const QSignalSpy rates(&history, &wifi::WiFiMetricsHistory::linkRateHistoryChanged);
        history.addDataPoint(0, {}, -92);
        m_clock.advance(5s);
        history.addDataPoint(-6, -50, -92);
        history.addDataPoint(-6, {}, -92);
        QCOMPARE(valuesOf(history.linkRateHistory()), (Values {0, -6}));
        QCOMPARE(valuesOf(history.noiseHistory()), (Values {92, 92}));
        QCOMPARE(rates.count(), 2);
        QCOMPARE(history.signalHistory().back().timestamp, m_clock.now());
    }

private:
    simulated::ManualClock m_clock;
};

NETVANE_TEST(TestWiFiMetricsHistory)
#include "test_wifi_metrics_history.moc"
