#include "support/captured_log.h"
#include "support/fake_location_manager.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::wifi;
using namespace Qt::Literals::StringLiterals;

using Status = platform::AuthorizationStatus;

class TestLocationPermissionService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_manager = std::make_unique<test::FakeLocationManager>();
        m_log.take();
    }

    void onlyAlwaysCounts_data()
    {
        QTest::addColumn<Status>("status");
        QTest::addColumn<bool>("authorized");
        QTest::newRow("not determined") << Status::NotDetermined << false;
        QTest::newRow("restricted") << Status::Restricted << false;
        QTest::newRow("denied") << Status::Denied << false;
        QTest::newRow("always") << Status::AuthorizedAlways << true;
        QTest::newRow("when in use") << Status::AuthorizedWhenInUse << false;
    }

    void onlyAlwaysCounts()
    {
        QFETCH(Status, status);
        m_manager->status = status;
        const LocationPermissionService service(*m_manager, m_activity);
        QCOMPARE(service.authorizationStatus(), status);
        QTEST(service.isAuthorized(), "authorized");
        QCOMPARE(m_log.take().size(), service.isAuthorized() ? 1 : 0);
    }

    void checkingTwiceSaysNothingTwice()
    {
        LocationPermissionService service(*m_manager, m_activity);
        const QSignalSpy statuses(&service, &LocationPermissionService::authorizationStatusChanged);
        const QSignalSpy flags(&service, &LocationPermissionService::isAuthorizedChanged);
        m_manager->status = Status::Denied;
        service.checkAuthorizationStatus();
        service.checkAuthorizationStatus();
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(flags.count(), 0);
        QCOMPARE(m_log.take(), QStringList());
    }

    void becomingActiveChecksAgain()
    {
        LocationPermissionService service(*m_manager, m_activity);
        m_manager->status = Status::AuthorizedAlways;
        Q_EMIT m_activity.didBecomeActive();
        QVERIFY(service.isAuthorized());
        QCOMPARE(m_log.take(),
            QStringList {
                u"LocationPermissionService: Authorization status changed - isAuthorized: true, status: 3"_s});
    }

    void toldFromOutside()
    {
        LocationPermissionService service(*m_manager, m_activity);
        service.updateAuthorizationStatus(Status::AuthorizedAlways);
        QVERIFY(!service.isAuthorized()); // not before the main loop turns
        QCoreApplication::processEvents();
        QCOMPARE(service.authorizationStatus(), Status::AuthorizedAlways);
        QVERIFY(service.isAuthorized());
        service.updateAuthorizationStatus(Status::AuthorizedAlways);
        QCoreApplication::processEvents();
        QCOMPARE(m_log.take(),
            QStringList {
                u"LocationPermissionService: Authorization status updated externally - status: 3, isAuthorized: true"_s});
    }

    void toldByTheSystem()
    {
        LocationPermissionService service(*m_manager, m_activity);
        const QSignalSpy statuses(&service, &LocationPermissionService::authorizationStatusChanged);
        m_manager->change(Status::AuthorizedAlways);
        m_manager->change(Status::AuthorizedAlways);
        QCoreApplication::processEvents();
        QVERIFY(service.isAuthorized());
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(m_log.take(), QStringList());
    }

    void asking()
    {
        m_manager->status = Status::Denied;
        LocationPermissionService service(*m_manager, m_activity);
        QCOMPARE(m_manager->requests, 0); // never by itself
        m_manager->status = Status::AuthorizedAlways;
        service.requestPermission();
        QCOMPARE(m_manager->requests, 1);
        QCOMPARE(m_log.take(),
            (QStringList {
                u"LocationPermissionService: Authorization status changed - isAuthorized: true, status: 3"_s,
                u"LocationPermissionService: Requesting location permission..."_s}));
    }

private:
    test::CapturedLog m_log;
    platform::ApplicationActivity m_activity;
    std::unique_ptr<test::FakeLocationManager> m_manager;
};

NETVANE_TEST(TestLocationPermissionService)
#include "test_location_permission_service.moc"
