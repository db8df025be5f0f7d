#include "support/test_main.h"
#include "world.h"

#include <QAccessible>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using platform::ChannelBand;
using Status = platform::AuthorizationStatus;

namespace {

const platform::LinkReading kHome {.ssid = u"Home"_s,
    .signalDbm = -70,
    .noiseDbm = -92,
    .transmitRateMbps = 866,
    .band = ChannelBand::FiveGHz};

} // namespace

/// The sections that show the readings, in the column that both windows have.
class TestDashboardView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void linkIsShownAsFarAsItIsKnown()
    {
        World world;
        ViewFixture view = world.dashboard();
        QVERIFY(view.shows(u"Not Connected"_s));
        QCOMPARE(view.texts(u"connection-summary"_s).count(u"\u2014"_s), 4);
        for (const auto& hidden : {u"location-permission"_s, u"captive-portal"_s, u"wifi-metrics"_s,
                 u"recommendations"_s})
            QVERIFY2(!view.find("objectName", hidden), qPrintable(hidden));
        QCOMPARE(view.problems(), QStringList());

        world.link(kHome);
        QVERIFY(view.shows(u"Home"_s) && view.shows(u"866 Mbps"_s));
        QVERIFY(view.shows(u"No history yet"_s) && view.shows(u"Signal: fair"_s));
        for (const int dbm : {-61, -59, -62})
            world.link({{.signalDbm = dbm}});
        QVERIFY(view.shows(u"Last -62 dBm, lowest -70 dBm, highest -59 dBm"_s));
        QVERIFY(view.shows(u"Signal: good"_s));
        QCOMPARE(view.problems(), QStringList());
        world.link({{.ssid = u"Home"_s, .band = ChannelBand::SixGHz}});
        QVERIFY(view.shows(u"Not Connected"_s));
        world.link({{.signalDbm = -81}});
        QVERIFY(view.shows(u"Connected (Location permission needed for network name)"_s));
        QCOMPARE(view.problems(), QStringList());
    }

    void hostileNames()
    {
        World world;
        ViewFixture view = world.dashboard();
        const QString hostile = u"\u202e<img src='http://127.0.0.1/x'>"_s
            + u"\U0001F468\u200d\U0001F469"_s.repeated(32);
        world.link({{.ssid = hostile, .signalDbm = -75, .band = ChannelBand::TwoGHz}});
        QVERIFY(view.shows(hostile));
        world.simulated.network.interfaces = {u"ipsec0"_s};
        world.simulated.network.servers = {u"fe80::1234:5678:9abc:def0%"_s + QString(200, u'x')};
        world.lookUp();
        world.state.refresh();
        QVERIFY(view.shows(u"VPN active"_s));
        QCOMPARE(view.texts(u"dns"_s).size(), 4);
        // Takes the lines it needs, even where there is no place to break it.
        world.state.setProperty("errorMessage", QString(248, u'x'));
        QCOMPARE(view.problems(), QStringList());
    }

    void paths()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.services.internetPingService->start();
        world.ping({}, 16ms);
        world.ping({}, 12ms);
        QCOMPARE(view.texts(u"performance"_s),
            QStringList({u"Performance Metrics"_s, u"Internet"_s, u"Cloudflare (1.1.1.1)"_s,
                u"Ping"_s, u"12 ms"_s, u"Jitter"_s, u"4.0 ms"_s, u"Packet Loss"_s, u"0%"_s,
                u"Voice Quality (MOS)"_s, u"4.4"_s, u"/ 5.0"_s, u"Excellent"_s}));
        world.services.routerPingService->start();
        world.ping(5ms, 30ms);
        QVERIFY(view.shows(u"Local Network"_s));
        QCOMPARE(view.problems(), QStringList());
        world.ping({}, {});
        QVERIFY(!view.shows(u"Voice Quality (MOS)"_s));
        world.link(kHome);
        world.lookUp();
        world.state.refresh();
        QCOMPARE(view.problems(), QStringList()); // where the dots are is known once it is laid out
        const QString dot = u"\u00b7"_s;
        QCOMPARE(view.texts(u"connection-summary"_s),
            QStringList({u"WiFi"_s, u"Weak"_s, dot, u"Router"_s, u"High loss"_s, dot, u"Internet"_s,
                u"High loss"_s, dot, u"DNS"_s, u"OK"_s}));
        view.root().window()->resize(320, 600);
        QCOMPARE(view.problems(), QStringList());
    }

    /// A full history has as many records as before.
    void graphsGoOnWhenTheHistoryIsFull()
    {
        World world;
        ViewFixture view = world.dashboard();
        world.services.internetPingService->start();
        for (int time = 1; time <= 15; ++time)
            world.ping({}, std::chrono::milliseconds(time * 10));
        QVERIFY(view.shows(u"Last 150 ms, lowest 60 ms, highest 150 ms"_s));
        for (int lost = 0; lost < 3; ++lost) // after the first, the figures stay as they are
            world.ping({}, {});
        QVERIFY(view.shows(u"Last 30%, lowest 0%, highest 30%"_s));
    }

    void explanationsStayWhileValuesChange()
    {
        World world;
        world.services.internetPingService->start();
        world.ping({}, 16ms);
        ViewFixture view = world.dashboard();
        QQuickItem* about = view.find("text", u"About Voice Quality (MOS)"_s);
        QCOMPARE(QAccessible::queryAccessibleInterface(about)->role(), QAccessible::Button);
        about->forceActiveFocus();
        QTest::keyClick(about->window(), Qt::Key_Return);
        world.ping({}, 900ms);
        QVERIFY(view.shows(u"900 ms"_s));
        QVERIFY(!view.texts().filter(u"MOS (Mean Opinion"_s).isEmpty());
        QCOMPARE(view.problems(), QStringList());
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
        QCOMPARE(view.problems(), QStringList());
        view.click(u"Open Login Page"_s);
        QCOMPARE(world.simulated.opener.opened, QList {login});
    }

    void permission()
    {
        World world;
        world.permit(Status::NotDetermined);
        ViewFixture view = world.dashboard();
        world.link({{.signalDbm = -60}});
        QVERIFY(view.shows(u"Location permission required to access Wi-Fi network name."_s));
        QCOMPARE(view.problems(), QStringList());
        const int requests = world.simulated.location.requests;
        view.click(u"Request Permission"_s);
        QCOMPARE(world.simulated.location.requests, requests + 1);
        world.permit(Status::Denied);
        QVERIFY(!view.shows(u"Request Permission"_s));
        world.permit(Status::AuthorizedAlways);
        QVERIFY(view.find("objectName", u"location-permission"_s)); // until the refresh
        world.link({{.signalDbm = -60}});
        QVERIFY(!view.find("objectName", u"location-permission"_s));
    }
};

NETVANE_TEST(TestDashboardView)
#include "test_dashboard_view.moc"
