#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/wifi_metrics_state.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using platform::ChannelBand;
using platform::LinkReading;
using test::DashboardWorld;
using test::ViewFixture;

namespace {

const LinkReading kHome {.ssid = u"Home"_s,
    .signalDbm = -70,
    .noiseDbm = -92,
    .transmitRateMbps = 866,
    .band = ChannelBand::FiveGHz};

} // namespace

class TestWiFiMetricsView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void modulation()
    {
        QCOMPARE(ui::linkDetails({}), QStringList());
        QCOMPARE(ui::linkDetails({.channelWidth = 160}), QStringList({u"160 MHz"_s}));
        QCOMPARE(ui::linkDetails({.mcsIndex = 9, .spatialStreams = 2, .channelWidth = 80}),
            QStringList({u"MCS 9"_s, u"80 MHz"_s, u"2x streams"_s}));
    }

    void eachWatchedValueRecords()
    {
        const auto pointsAfter = [](const LinkReading& reading) {
            DashboardWorld world;
            ui::WiFiMetricsState state(world.readings, world.clock);
            state.setShown(true);
            world.link(reading);
            return state.cards()[1].series.size();
        };
        // A history may begin with two equal points, so the second recording shows.
        QCOMPARE(pointsAfter({.signalDbm = -60}), 1);
        QCOMPARE(pointsAfter({.signalDbm = -60, .transmitRateMbps = 54}), 2);
    }

    void recordsOnlyWhileShown()
    {
        DashboardWorld world;
        ui::WiFiMetricsState state(world.readings, world.clock);
        world.link(kHome);
        QVERIFY(state.cards()[1].series.isEmpty());
        state.setShown(true);
        QCOMPARE(state.cards()[1].series, QList<double>({70}));
        world.link({});
        QCOMPARE(state.cards()[1].series, QList<double>({70}));
        state.setShown(false);
        world.link({{.signalDbm = -50}});
        QCOMPARE(state.cards()[1].series, QList<double>({70}));
    }

    void showsWhatIsKnown()
    {
        DashboardWorld world;
        ui::WiFiMetricsState state(world.readings, world.clock);
        ViewFixture view(
            u"WiFiMetricsView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QCOMPARE(view.texts(), QStringList());

        world.link(kHome);
        const QStringList title {u"Wi\u2011Fi Metrics"_s};
        const QStringList phy {u"PHY Mode"_s, u"802.11ac (WiFi 5) or 802.11ax (WiFi 6)"_s};
        const QStringList rate {u"Link Rate"_s, u"866 Mbps"_s};
        const QStringList noise {u"Noise Level"_s, u"-92 dBm"_s};
        QCOMPARE(view.texts(),
            title + rate + QStringList({u"Signal Strength"_s, u"-70 dBm"_s}) + noise + phy);
        QCOMPARE(state.cards()[1].accent, ui::Accent::Orange);
        QVERIFY(!view.find("text", u"About Link Rate"_s));
        // One point makes no line.
        QVERIFY(!view.find("summary", u"No history yet"_s));
        view.picture(u"wifi-metrics-first"_s);
        for (const int dbm : {-61, -63, -59, -66, -62}) {
            LinkReading reading = kHome;
            reading.signalDbm = dbm;
            reading.transmitRateMbps = 1000 + dbm;
            world.link(reading);
        }
        QVERIFY(view.find("summary", u"Last 62.0, lowest 59.0, highest 70.0"_s));
        view.picture(u"wifi-metrics-typical"_s);

        world.link({{.ssid = u"Home"_s, .band = ChannelBand::SixGHz}});
        QCOMPARE(view.texts(), title + QStringList({u"PHY Mode"_s, u"802.11ax (WiFi 6E)"_s}));
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestWiFiMetricsView)
#include "test_wifi_metrics_view.moc"
