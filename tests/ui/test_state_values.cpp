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

namespace {

const QList<Accent> kAccents {Accent::Green, Accent::Orange, Accent::Orange, Accent::Red};

} // namespace

class TestStateValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Each figure is graded before it is rounded; the values stand around the two bounds.
    void figures()
    {
        const std::tuple<std::optional<double> NetworkMetrics::*, QList<double>, QStringList> rows[]
            = {
                {&NetworkMetrics::ping, {19.6, 20, 49.9, 50},
                    {u"20 ms"_s, u"20 ms"_s, u"50 ms"_s, u"50 ms"_s}},
                {&NetworkMetrics::jitter, {9.99, 10, 29.9, 30},
                    {u"10.0 ms"_s, u"10.0 ms"_s, u"29.9 ms"_s, u"30.0 ms"_s}},
                {&NetworkMetrics::packetLoss, {0.9, 1, 4.9, 5},
                    {u"1%"_s, u"1%"_s, u"5%"_s, u"5%"_s}},
            };
        for (int card = 0; card < 3; ++card) {
            const auto& [figure, values, texts] = rows[card];
            for (int index = 0; index < values.size(); ++index) {
                NetworkMetrics metrics;
                metrics.*figure = values[index];
                const auto cards = ui::pathCards(metrics, {});
                for (int each = 0; each < 3; ++each)
                    QCOMPARE(cards[each].value.isValid(), each == card);
                QCOMPARE(cards[card].value.toString(), texts[index]);
                QCOMPARE(cards[card].accent, kAccents[index]);
            }
        }
    }

    void gradesOfVoiceAndSignal()
    {
        QList<Accent> accents;
        for (const double score : {4.0, 3.99, 3.5, 3.49})
            accents.append(ui::mosCard(score, {}).accent);
        QCOMPARE(accents, kAccents);
        QCOMPARE(ui::mosCard(3.99, {}).score.toString(), u"4.0"_s);
        accents.clear();
        for (const int dbm : {-69, -70, -79, -80})
            accents.append(ui::signalAccent(dbm));
        QCOMPARE(accents, kAccents);
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

    void connectionStatus()
    {
        using enum ConnectionStatus;
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 2, .packetLoss = 0.5}), highLoss);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 100, .packetLoss = 0}), slow);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 99.9}), ok);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 20, .jitter = 30}), slow);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.jitter = 29.9}), ok);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.packetLoss = 0}), unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {}), unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -70}), weak);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -69}), ok);
        QCOMPARE(ui::dnsStatus(49.9), ok);
        QCOMPARE(ui::dnsStatus(50.0), slow);
    }

    void relativeTimes()
    {
        const std::tuple<Milliseconds, QString, Milliseconds> rows[]
            = {{-2s, u"0 sec ago"_s, 3s}, // the clock was set back
                {12'300ms, u"12 sec ago"_s, 700ms}, {59'999ms, u"59 sec ago"_s, 1ms},
                {60s, u"1 min ago"_s, 60s}, {59min + 59s, u"59 min ago"_s, 1s},
                {1h, u"1 hr ago"_s, 1h}, {23h + 59min, u"23 hr ago"_s, 1min},
                {24h, u"1 day ago"_s, 24h}, {49h, u"2 days ago"_s, 23h}};
        for (const auto& [elapsed, text, untilNext] : rows) {
            QCOMPARE(ui::relativeTime(elapsed), text);
            QCOMPARE(ui::untilRelativeTimeChanges(elapsed), untilNext);
        }
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
