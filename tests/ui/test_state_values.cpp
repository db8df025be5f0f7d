#include "simulated/manual_clock.h"
#include "support/test_main.h"
#include "ui/state/connection_status.h"
#include "ui/state/metric_cards.h"
#include "ui/state/relative_time.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using probes::NetworkMetrics;
using ui::Accent;
using ui::ConnectionStatus;
using Milliseconds = std::chrono::milliseconds;

class TestStateValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void figures_data()
    {
        QTest::addColumn<int>("card");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Accent>("accent");
        const auto row = [](int card, double value, const char* text, Accent accent) {
            QTest::addRow("%d: %g", card, value)
                << card << value << QString::fromLatin1(text) << accent;
        };
        row(0, 19.6, "20 ms", Accent::Green); // graded before it is rounded
        row(0, 20, "20 ms", Accent::Orange);
        row(0, 49.9, "50 ms", Accent::Orange);
        row(0, 50, "50 ms", Accent::Red);
        row(1, 9.99, "10.0 ms", Accent::Green);
        row(1, 10, "10.0 ms", Accent::Orange);
        row(1, 30, "30.0 ms", Accent::Red);
        row(2, 0.9, "1%", Accent::Green);
        row(2, 1, "1%", Accent::Orange);
        row(2, 5, "5%", Accent::Red);
        row(3, 4.0, "4.0", Accent::Green);
        row(3, 3.99, "4.0", Accent::Orange);
        row(3, 3.5, "3.5", Accent::Orange);
        row(3, 3.49, "3.5", Accent::Red);
    }
    void figures()
    {
        QFETCH(int, card);
        QFETCH(double, value);
        if (card == 3) {
            const auto mos = ui::mosCard(value, u"Fair"_s);
            QTEST(mos.score.toString(), "text");
            QTEST(mos.accent, "accent");
            return;
        }
        NetworkMetrics metrics;
        std::array {&metrics.ping, &metrics.jitter, &metrics.packetLoss}[size_t(card)]->emplace(
            value);
        const auto cards = ui::pathCards(metrics, {});
        for (int each = 0; each < 3; ++each)
            QCOMPARE(cards[each].value.isValid(), each == card);
        QTEST(cards[card].value.toString(), "text");
        QTEST(cards[card].accent, "accent");
    }

    void seriesLeaveOutWhatIsAbsent()
    {
        std::vector<NetworkMetrics> history;
        for (int i = 1; i <= 12; ++i)
            history.push_back({.ping = i, .packetLoss = 0});
        history[5].ping.reset();
        history[7].jitter = 7;
        const auto series = ui::PathSeries::of(history);
        QCOMPARE(series.ping, QList<double>({3, 4, 5, 7, 8, 9, 10, 11, 12}));
        QCOMPARE(series.jitter, QList<double>({7}));
        QCOMPARE(series.loss.size(), 10);
    }

    void grades_data()
    {
        QTest::addColumn<NetworkMetrics>("metrics");
        QTest::addColumn<ConnectionStatus>("status");
        const auto row = [](const char* name, const NetworkMetrics& metrics, auto status) {
            QTest::newRow(name) << metrics << status;
        };
        row("some loss, fast", {.ping = 2, .packetLoss = 0.5}, ConnectionStatus::highLoss);
        row("just far", {.ping = 100, .packetLoss = 0}, ConnectionStatus::slow);
        row("not quite far", {.ping = 99.9}, ConnectionStatus::ok);
        row("unsteady", {.ping = 20, .jitter = 30}, ConnectionStatus::slow);
        row("steady", {.ping = 20, .jitter = 29.9}, ConnectionStatus::ok);
        row("jitter alone", {.jitter = 1}, ConnectionStatus::ok);
        row("no loss alone", {.packetLoss = 0}, ConnectionStatus::unknown);
    }
    void grades()
    {
        QFETCH(NetworkMetrics, metrics);
        QTEST(ui::pathStatus(metrics), "status");
    }

    void thresholdsOfLinkAndLookup()
    {
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {}), ConnectionStatus::unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -70}), ConnectionStatus::weak);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -69}), ConnectionStatus::ok);
        QCOMPARE(ui::dnsStatus(49.9), ConnectionStatus::ok);
        QCOMPARE(ui::dnsStatus(50.0), ConnectionStatus::slow);
        QCOMPARE(ui::signalAccent(-69), Accent::Green);
        QCOMPARE(ui::signalAccent(-70), Accent::Orange);
        QCOMPARE(ui::signalAccent(-79), Accent::Orange);
        QCOMPARE(ui::signalAccent(-80), Accent::Red);
    }

    void relativeTimes_data()
    {
        QTest::addColumn<Milliseconds>("elapsed");
        QTest::addColumn<Milliseconds>("untilNext");
        const auto row = [](Milliseconds elapsed, const char* text, Milliseconds untilNext) {
            QTest::newRow(text) << elapsed << untilNext;
        };
        row(-2s, "0 sec ago", 3s); // the clock was set back
        row(12'300ms, "12 sec ago", 700ms);
        row(59'999ms, "59 sec ago", 1ms);
        row(60s, "1 min ago", 60s);
        row(59min + 59s, "59 min ago", 1s);
        row(1h, "1 hr ago", 1h);
        row(23h + 59min, "23 hr ago", 1min);
        row(24h, "1 day ago", 24h);
        row(49h, "2 days ago", 23h);
    }
    void relativeTimes()
    {
        QFETCH(Milliseconds, elapsed);
        QCOMPARE(ui::relativeTime(elapsed), QString::fromLatin1(QTest::currentDataTag()));
        QTEST(ui::untilRelativeTimeChanges(elapsed), "untilNext");
    }

    void timesTickOnlyWhileShownAndWhenATextChanges()
    {
        simulated::ManualClock clock;
        const auto start = clock.now();
        QStringList updates;
        std::unique_ptr<ui::RelativeTimes> times;
        times = std::make_unique<ui::RelativeTimes>(clock, [&] {
            updates.append(times->text(start));
            times->follow({start, start - 1h});
        });
        times->follow({start});
        clock.advance(58s);
        QCOMPARE(updates, QStringList());
        times->setShown(true);
        clock.advance(62s);
        QCOMPARE(updates,
            QStringList({u"58 sec ago"_s, u"59 sec ago"_s, u"1 min ago"_s, u"2 min ago"_s}));
        times->setShown(false);
        clock.advance(10min);
        QCOMPARE(updates.size(), 4);
        QCOMPARE(clock.timerCount(), 0);
    }
};

NETVANE_TEST(TestStateValues)
#include "test_state_values.moc"
