#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/captive_portal_state.h"
#include "ui/state/error_message_state.h"
#include "ui/state/location_permission_state.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using platform::AuthorizationStatus;
using test::DashboardWorld;
using test::ViewFixture;

class TestBannerViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captivePortal()
    {
        DashboardWorld world;
        ui::CaptivePortalState state(world.readings, world.portal);
        ViewFixture view(
            u"CaptivePortalView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QVERIFY(!view.root().isVisible());
        const QUrl login(u"http://portal.test/login"_s);
        world.portal.checkForCaptivePortal();
        world.http.answer({.status = 200, .body = "log in"_ba, .finalUrl = login});
        QVERIFY(!view.root().isVisible()); // not before the readings are refreshed
        world.readings.refresh();
        QCOMPARE(view.texts(),
            QStringList({u"Captive Portal Detected"_s,
                u"This network requires login. Open a browser to authenticate."_s,
                u"Open Login Page"_s}));
        view.picture(u"captive-portal"_s);
        view.click(view.find("text", u"Open Login Page"_s));
        QCOMPARE(world.opener.opened, QList {login});
        QCOMPARE(view.problems(), QStringList());
    }

    void errorMessage()
    {
        DashboardWorld world;
        ui::ErrorMessageState state(world.readings);
        ViewFixture view(
            u"ErrorMessageView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QVERIFY(!view.root().isVisible());
        world.link({{.ssid = {}}});
        QCOMPARE(view.texts(),
            QStringList({u"Location permission required to access Wi-Fi network name."_s}));
        view.picture(u"error-message"_s);
        // Takes the lines it needs, even where there is no place to break it.
        auto* message
            = view.find("text", u"Location permission required to access Wi-Fi network name."_s);
        message->setProperty("text", QString(u"Error "_s.repeated(42) + QString(248, u'x')));
        view.picture(u"error-message-long"_s);
        QVERIFY(message->width() <= 420 && message->height() > 100);
        QCOMPARE(view.problems(), QStringList());
        world.link({{.ssid = u"Home"_s}});
        QVERIFY(!view.root().isVisible());
        QCOMPARE(view.problems(), QStringList());
    }

    void locationPermission()
    {
        DashboardWorld world;
        world.wifi.setLocationPermissionService(world.permission);
        ui::LocationPermissionState state(world.readings, world.permission, world.opener);
        ViewFixture view(
            u"LocationPermissionView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QVERIFY(!view.root().isVisible());
        world.link({{.signalDbm = -60}});
        QVERIFY(view.root().isVisible());
        view.picture(u"location-permission"_s);
        view.click(view.find("text", u"Open System Settings"_s));
        QCOMPARE(world.opener.opened,
            QList {QUrl(
                u"x-apple.systempreferences:com.apple.preference.security?Privacy_LocationServices"_s)});
        view.click(view.find("text", u"Request Permission"_s));
        QCOMPARE(world.locationManager.requests, 1);

        world.locationManager.change(AuthorizationStatus::Denied);
        QCoreApplication::processEvents();
        QVERIFY(!view.find("text", u"Request Permission"_s));
        QVERIFY(view.find("text", u"Open System Settings"_s));
        view.picture(u"location-permission-denied"_s);
        world.locationManager.change(AuthorizationStatus::AuthorizedAlways);
        QCoreApplication::processEvents();
        QVERIFY(view.root().isVisible()); // until the readings are refreshed
        world.link({{.signalDbm = -60}});
        QVERIFY(!view.root().isVisible());
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestBannerViews)
#include "test_banner_views.moc"
