#include "support/test_main.h"
#include "world.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using platform::ChannelBand;
using platform::LinkReading;
using Status = platform::AuthorizationStatus;

namespace {

const LinkReading kHome {.ssid = u"Home"_s,
    .signalDbm = -70,
    .noiseDbm = -92,
    .transmitRateMbps = 866,
    .band = ChannelBand::FiveGHz};

} // namespace

/// The sections that show the readings, in the column that both windows have.
class TestDashboardView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsOnlyWhatIsKnown()
    {
        World world;
        ViewFixture view = world.dashboard();
        QVERIFY(view.texts(u"network-info"_s).contains(u"Not Connected"_s));
        QCOMPARE(view.texts(u"performance"_s), QStringList(u"Performance Metrics"_s));
        QCOMPARE(view.texts(u"dns"_s), QStringList(u"DNS Performance"_s));
        QCOMPARE(view.texts(u"connection-summary"_s).count(u"\u2014"_s), 4);
        for (const auto& hidden : {u"location-permission"_s, u"captive-portal"_s, u"wifi-metrics"_s,
                 u"recommendations"_s})
            QVERIFY2(!view.find("objectName", hidden), qPrintable(hidden));
        QCOMPARE(view.problems(u"dashboard-nothing"_s), QStringList());
    }

    void link()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.link(kHome);
        QVERIFY(view.find("text", u"Home"_s));
        QVERIFY(view.find("text", u"866 Mbps"_s));
        QVERIFY(view.find("summary", u"No history yet"_s) == nullptr); // one point makes no line
        for (const int dbm : {-61, -59, -62}) {
            auto reading = kHome;
            reading.signalDbm = dbm;
            world.link(reading);
        }
        QVERIFY(view.find("summary", u"Last 62.0, lowest 59.0, highest 70.0"_s));
        QCOMPARE(view.problems(u"dashboard-link"_s), QStringList());

        world.link({{.ssid = u"Home"_s, .band = ChannelBand::SixGHz}});
        QVERIFY(view.texts(u"network-info"_s).contains(u"Not Connected"_s));
        QCOMPARE(view.texts(u"wifi-metrics"_s).size(), 3); // the titles and the standard
        world.link({{.signalDbm = -81}});
        QVERIFY(view.find("text", u"Connected (Location permission needed for network name)"_s));
        QCOMPARE(view.problems({}), QStringList());
    }

    /// Each watched value records, and only while the figures can be seen.
    void linkHistory()
    {
        World world;
        const auto points = [&] {
            return world.state.property("wifiMetrics").value<ui::WiFiMetrics>().cards[1].series;
        };
        world.link(kHome);
        QVERIFY(points().isEmpty());
        world.state.setShown(true);
        QCOMPARE(points(), QList<double>({70}));
        world.state.setShown(false);
        world.link({{.signalDbm = -50}});
        QCOMPARE(points(), QList<double>({70}));
        world.state.setShown(true);
        const auto before = points().size();
        world.link({{.signalDbm = -60, .transmitRateMbps = 54}});
        QCOMPARE(points().size(), before + 1);
    }

    void hostileNames()
    {
        World world;
        ViewFixture view = world.dashboard();
        const QString hostile = u"\u202e<img src='http://127.0.0.1/x'>"_s
            + u"\U0001F468\u200d\U0001F469"_s.repeated(32);
        world.link({{.ssid = hostile, .signalDbm = -75, .band = ChannelBand::TwoGHz}});
        QVERIFY(view.find("text", hostile));
        world.simulated.network.interfaces = {u"ipsec0"_s};
        world.simulated.network.servers = {u"fe80::1234:5678:9abc:def0%"_s + QString(200, u'x')};
        world.lookUp();
        world.state.refresh();
        QVERIFY(view.find("text", u"VPN active"_s));
        QCOMPARE(view.texts(u"dns"_s).size(), 4);
        view.click(u"About DNS Lookup"_s);
        QCOMPARE(view.texts(u"dns"_s).size(), 5);
        // Takes the lines it needs, even where there is no place to break it.
        world.state.setProperty("errorMessage", QString(248, u'x'));
        QCOMPARE(view.problems(u"dashboard-hostile"_s), QStringList());
    }

    void paths()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.services.internetPingService->start();
        world.ping({}, 16ms);
        world.ping({}, 12ms);
        QVERIFY(!view.find("text", u"Router"_s) || !view.find("text", u"Local Network"_s));
        QCOMPARE(view.texts(u"performance"_s),
            QStringList({u"Performance Metrics"_s, u"Internet"_s, u"Cloudflare (1.1.1.1)"_s,
                u"Ping"_s, u"12 ms"_s, u"Jitter"_s, u"4.0 ms"_s, u"Packet Loss"_s, u"0%"_s,
                u"Voice Quality (MOS)"_s, u"4.4"_s, u"/ 5.0"_s, u"Excellent"_s}));
        world.services.routerPingService->start();
        for (const auto time : {5ms, 2ms, 4ms, 3ms})
            world.ping(time, time * 6);
        QVERIFY(view.find("text", u"Local Network"_s));
        QCOMPARE(view.texts(u"performance"_s).count(u"Voice Quality (MOS)"_s), 1);
        const auto router = world.state.property("router").value<ui::PerformanceSection>();
        QCOMPARE(router.cards[0].series, QList<double>({5, 2, 4, 3}));
        QCOMPARE(view.problems(u"dashboard-paths"_s), QStringList());

        world.ping(3ms, {});
        QVERIFY(!view.find("text", u"Voice Quality (MOS)"_s));
        QCOMPARE(view.texts(u"connection-summary"_s)[7], u"High loss"_s);
    }

    void explanationsStayWhileValuesChange()
    {
        World world;
        world.services.internetPingService->start();
        world.ping({}, 16ms);
        ViewFixture view = world.dashboard();
        const auto shown
            = [&](const QString& text) { return !view.texts().filter(text).isEmpty(); };
        const QString ping = u"Round-trip time to the server."_s;
        const QString mos = u"MOS (Mean Opinion Score) predicts"_s;
        view.click(u"About Ping"_s);
        QQuickItem* aboutMos = view.find("text", u"About Voice Quality (MOS)"_s);
        aboutMos->forceActiveFocus();
        QTest::keyClick(aboutMos->window(), Qt::Key_Return);
        QVERIFY(shown(ping) && shown(mos));
        world.ping({}, 900ms);
        QVERIFY(shown(u"900 ms"_s) && shown(ping) && shown(mos));
        QCOMPARE(view.problems(u"dashboard-explained"_s), QStringList());
        view.click(u"About Ping"_s);
        QVERIFY(!shown(ping) && shown(mos));
        // A card that was hidden starts without its explanation.
        world.ping({}, {});
        world.ping({}, 16ms);
        QVERIFY(shown(u"16 ms"_s) && !shown(mos));
    }

    void summaryFitsOnItsLine()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.link({{.signalDbm = -70}});
        world.services.routerPingService->start();
        world.services.internetPingService->start();
        world.ping(120ms, 20ms);
        QCOMPARE(view.texts(u"connection-summary"_s)[4], u"Slow"_s);
        world.ping({}, {});
        world.lookUp();
        const QString dot = u"\u00b7"_s;
        QCOMPARE(view.texts(u"connection-summary"_s),
            QStringList({u"WiFi"_s, u"Weak"_s, dot, u"Router"_s, u"High loss"_s, dot, u"Internet"_s,
                u"High loss"_s, dot, u"DNS"_s, u"OK"_s}));
        (void)view.problems({});
        const QQuickItem* name = view.find("text", u"DNS"_s);
        QCOMPARE_LE(name->mapToScene({name->width(), 0}).x(), view.root().width() - 36);
    }

    void captivePortal()
    {
        World world;
        ViewFixture view = world.dashboard();
        const QUrl login(u"http://portal.test/login"_s);
        world.services.captivePortalService->checkForCaptivePortal();
        world.simulated.http.answer({.status = 200, .body = "log in"_ba, .finalUrl = login});
        QVERIFY(!view.find("objectName", u"captive-portal"_s)); // before the refresh
        world.state.refresh();
        QCOMPARE(view.problems(u"dashboard-portal"_s), QStringList());
        view.click(u"Open Login Page"_s);
        QCOMPARE(world.simulated.opener.opened, QList {login});
    }

    void permission()
    {
        World world;
        world.permit(Status::NotDetermined);
        ViewFixture view = world.dashboard();
        world.link({{.signalDbm = -60}});
        QCOMPARE(view.texts(u"error-message"_s),
            QStringList(u"Location permission required to access Wi-Fi network name."_s));
        QCOMPARE(view.problems(u"dashboard-permission"_s), QStringList());
        const int requests = world.simulated.location.requests;
        view.click(u"Request Permission"_s);
        QCOMPARE(world.simulated.location.requests, requests + 1);
        world.permit(Status::Denied);
        QVERIFY(!view.find("text", u"Request Permission"_s));
        world.permit(Status::AuthorizedAlways);
        QVERIFY(view.find("objectName", u"location-permission"_s)); // until the refresh
        world.link({{.signalDbm = -60}});
        QVERIFY(!view.find("objectName", u"location-permission"_s));
    }

    void advisesAsLongAsThereIsCause()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.services.routerPingService->start();
        world.link({{.signalDbm = -80, .band = ChannelBand::TwoGHz}});
        world.ping(10ms, {});
        world.ping(100ms, {});
        QCOMPARE(view.texts(u"recommendations"_s).size(), 4);
        QCOMPARE(view.problems(u"dashboard-advice"_s), QStringList());
        world.link({});
        for (int i = 0; i < 10; ++i)
            world.ping(10ms, {});
        QCOMPARE(view.texts(u"recommendations"_s), QStringList());
    }
};

NETVANE_TEST(TestDashboardView)
#include "test_dashboard_view.moc"
