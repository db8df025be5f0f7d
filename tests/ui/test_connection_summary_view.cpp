#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/connection_status.h"
#include "ui/state/connection_summary_state.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using probes::NetworkMetrics;
using test::DashboardWorld;
using test::ViewFixture;
using ui::ConnectionStatus;

namespace {

const QString kUnknown = u"\u2014"_s;

QStringList strip(
    const QString& wifi, const QString& router, const QString& internet, const QString& dns)
{
    const QString dot = u"\u00b7"_s;
    return {u"WiFi"_s, wifi, dot, u"Router"_s, router, dot, u"Internet"_s, internet, dot, u"DNS"_s,
        dns};
}

} // namespace

class TestConnectionSummaryView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void paths_data()
    {
        QTest::addColumn<NetworkMetrics>("metrics");
        QTest::addColumn<ConnectionStatus>("status");
        QTest::newRow("some loss, fast")
            << NetworkMetrics {.ping = 2, .packetLoss = 0.5} << ConnectionStatus::highLoss;
        QTest::newRow("far") << NetworkMetrics {.ping = 150, .packetLoss = 0}
                             << ConnectionStatus::slow;
        QTest::newRow("just far") << NetworkMetrics {.ping = 100} << ConnectionStatus::slow;
        QTest::newRow("not quite far") << NetworkMetrics {.ping = 99.9} << ConnectionStatus::ok;
        QTest::newRow("unsteady") << NetworkMetrics {.ping = 20, .jitter = 30}
                                  << ConnectionStatus::slow;
        QTest::newRow("steady") << NetworkMetrics {.ping = 20, .jitter = 29.9}
                                << ConnectionStatus::ok;
        QTest::newRow("jitter alone") << NetworkMetrics {.jitter = 1} << ConnectionStatus::ok;
        QTest::newRow("no loss alone")
            << NetworkMetrics {.packetLoss = 0} << ConnectionStatus::unknown;
    }
    void paths()
    {
        QFETCH(NetworkMetrics, metrics);
        QTEST(ui::pathStatus(metrics), "status");
    }

    void linksAndLookups()
    {
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {}), ConnectionStatus::unknown);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -70}), ConnectionStatus::weak);
        QCOMPARE(ui::wifiStatus(wifi::WiFiInfo {.signalStrength = -69}), ConnectionStatus::ok);
        QCOMPARE(ui::dnsStatus(49.9), ConnectionStatus::ok);
        QCOMPARE(ui::dnsStatus(50.0), ConnectionStatus::slow);
    }

    void oneLine()
    {
        DashboardWorld world;
        ui::ConnectionSummaryState state(world.readings, world.dns);
        ViewFixture view(
            u"ConnectionSummaryView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 388);
        QCOMPARE(view.texts(), strip(kUnknown, kUnknown, kUnknown, kUnknown));
        QCOMPARE(state.items()[0].accent, ui::Accent::Tertiary);
        view.picture(u"summary-nothing"_s);

        world.link({{.signalDbm = -70}});
        world.router.start();
        world.internet.start();
        world.ping(120ms, 20ms);
        world.lookUp();
        QCOMPARE(view.texts(), strip(u"Weak"_s, u"Slow"_s, u"OK"_s, u"OK"_s));
        QCOMPARE(state.items()[0].accent, ui::Accent::Orange);
        QCOMPARE(state.items()[3].accent, ui::Accent::Green);
        world.ping({}, {});
        QCOMPARE(view.texts(), strip(u"Weak"_s, u"High loss"_s, u"High loss"_s, u"OK"_s));
        view.picture(u"summary-longest"_s);
        const QQuickItem* name = view.find("text", u"DNS"_s);
        QCOMPARE_LE(name->mapToScene({name->width(), 0}).x(), view.root().width() - 36);
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestConnectionSummaryView)
#include "test_connection_summary_view.moc"
