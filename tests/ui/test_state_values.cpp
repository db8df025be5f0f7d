#include "simulated/desktop.h"
#include "simulated/manual_clock.h"
#include "support/test_main.h"
#include "ui/painting/sparkline.h"
#include "ui/painting/theme.h"
#include "ui/state/connection_status.h"
#include "ui/state/metric_cards.h"
#include "ui/state/relative_time.h"

#include <QColorSpace>
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
        const std::tuple<std::optional<double> NetworkMetrics::*, QList<double>, QString> rows[] = {
            {&NetworkMetrics::ping, {19.6, 20, 49.9, 50}, u"20 ms|20 ms|50 ms|50 ms"_s},
            {&NetworkMetrics::jitter, {9.99, 10, 29.9, 30}, u"10.0 ms|10.0 ms|29.9 ms|30.0 ms"_s},
            {&NetworkMetrics::packetLoss, {0.9, 1, 4.9, 5}, u"1%|1%|5%|5%"_s}};
        for (int card = 0; card < 3; ++card) {
            const auto& [figure, values, texts] = rows[card];
            for (int index = 0; index < values.size(); ++index) {
                NetworkMetrics metrics;
                metrics.*figure = values[index];
                const auto shown = ui::pathCards(metrics, {})[card];
                QCOMPARE(shown.value.toString(), texts.section(u'|', index, index));
                QCOMPARE(shown.accent, kAccents[index]);
            }
        }
    }

    /// What stays the same, or moves as little as noise does, does not fill the height of a graph.
    void graphsAreToScale()
    {
        using ui::MetricGraph;
        const QRectF box(2, 3, 80, 20);
        const std::tuple<MetricGraph, double, double, QString> rows[]
            = {{MetricGraph::fromZero({10, 10}, 1, 0, u"%"_s), 3, 3,
                   u"Last 10%, lowest 10%, highest 10%"_s},
                {MetricGraph::fromZero({0, 0}, 1, 0, u"%"_s), 23, 23,
                    u"Last 0%, lowest 0%, highest 0%"_s},
                {MetricGraph::fromZero({1, 5}, 10, 1, u" ms"_s), 13, 21,
                    u"Last 5.0 ms, lowest 1.0 ms, highest 5.0 ms"_s},
                {MetricGraph::ofDbm({{{}, 62}, {{}, 60}}), 12, 14,
                    u"Last -60 dBm, lowest -62 dBm, highest -60 dBm"_s},
                {MetricGraph::ofDbm({{{}, 90}, {{}, 40}, {{}, 90}}), 3, 23,
                    u"Last -90 dBm, lowest -90 dBm, highest -40 dBm"_s}};
        for (const auto& [graph, top, bottom, summary] : rows) {
            const QPainterPath path = ui::smoothCurve(graph, box);
            const QRectF bounds = path.boundingRect();
            QCOMPARE(bounds.top(), top);
            QCOMPARE(bounds.bottom(), bottom);
            QCOMPARE(bounds.left(), box.left());
            QCOMPARE(path.currentPosition().x(), box.right());
            QCOMPARE(graph.summary(), summary);
        }
        QVERIFY(ui::smoothCurve(MetricGraph::ofDbm({{{}, 62}}), box).isEmpty());
    }

    /// WCAG 2.1: 4.5 to 1 for texts, 3 to 1 for what shows a control.
    void contrast()
    {
        simulated::Appearance appearance;
        ui::Theme theme(appearance);
        const auto linear
            = QColorSpace(QColorSpace::SRgb).transformationToColorSpace(QColorSpace::SRgbLinear);
        const auto luminance = [&](const char* name) {
            const QColor color = linear.map(theme.property(name).value<QColor>());
            return 0.05 + 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
        };
        for (const auto scheme : {platform::ColorScheme::Light, platform::ColorScheme::Dark}) {
            appearance.setColorScheme(scheme);
            for (const auto& [name, least] : {std::pair("primaryText", 4.5), {"secondaryText", 4.5},
                     {"tertiaryText", 4.5}, {"outline", 3.0}, {"prominentFill", 3.0}}) {
                for (const char* ground : {"controlBackground", "cardBackground"}) {
                    const auto [low, high] = std::minmax({luminance(name), luminance(ground)});
                    QVERIFY2(high / low >= least, name);
                }
            }
        }
    }

    void connectionStatus()
    {
        using enum ConnectionStatus;
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 2, .packetLoss = 0.5}), highLoss);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 100, .packetLoss = 0}), slow);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 99.9}), ok);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.ping = 20, .jitter = 30}), slow);
        QCOMPARE(ui::pathStatus(NetworkMetrics {.packetLoss = 0}), unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {}), unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -70}), weak);
        QCOMPARE(ui::dnsStatus(50.0), slow);
        QCOMPARE(ui::linkDetails({.mcsIndex = 9, .spatialStreams = 2, .channelWidth = 80}),
            QStringList({u"MCS 9"_s, u"80 MHz"_s, u"2x streams"_s}));
    }

    void relativeTimes()
    {
        const std::tuple<Milliseconds, QString, Milliseconds> rows[]
            = {{-2s, u"0 sec ago"_s, 3s}, // the clock was set back
                {59'999ms, u"59 sec ago"_s, 1ms}, {60s, u"1 min ago"_s, 60s},
                {23h + 59min, u"23 hr ago"_s, 1min}, {49h, u"2 days ago"_s, 23h}};
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
