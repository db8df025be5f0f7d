#include "simulated/wifi.h"
#include "support/captured_log.h"
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
        m_manager = std::make_unique<simulated::LocationManager>();
        m_service = std::make_unique<LocationPermissionService>(*m_manager, m_activity);
        m_log.take();
    }

    void onlyAlwaysCounts()
    {
        for (const auto status : {Status::NotDetermined, Status::Restricted, Status::Denied,
                 Status::AuthorizedAlways, Status::AuthorizedWhenInUse}) {
            m_manager->status = status;
            const LocationPermissionService service(*m_manager, m_activity);
            QCOMPARE(service.authorizationStatus(), status);
            QCOMPARE(service.isAuthorized(), status == Status::AuthorizedAlways);
            QCOMPARE(m_log.take().size(), service.isAuthorized() ? 1 : 0);
        }
    }

    /// How the service learns of a grant, and what it logs; a second time changes nothing.
    void grants_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("line");
        const QString start = u"LocationPermissionService: Authorization status "_s;
        const QString changed = start + u"changed - isAuthorized: true, status: 3"_s;
        QTest::newRow("checked") << u"check"_s << changed;
        QTest::newRow("becoming active") << u"active"_s << changed;
        QTest::newRow("signal of the system") << u"signal"_s << QString();
        QTest::newRow("told by another service")
            << u"update"_s << start + u"updated externally - status: 3, isAuthorized: true"_s;
    }
    void grants()
    {
        QFETCH(QString, way);
        QFETCH(QString, line);
        const QSignalSpy statuses(
            m_service.get(), &LocationPermissionService::authorizationStatusChanged);
        for (int time = 0; time < 2; ++time) {
            if (way != u"update")
                m_manager->status = Status::AuthorizedAlways;
            if (way == u"check")
                m_service->checkAuthorizationStatus();
            else if (way == u"active")
                Q_EMIT m_activity.didBecomeActive();
            else if (way == u"signal")
                m_manager->change(Status::AuthorizedAlways);
            else
                m_service->updateAuthorizationStatus(Status::AuthorizedAlways);
            // Not inside the call of who tells it.
            if (way == u"update" && time == 0)
                QVERIFY(!m_service->isAuthorized());
            QCoreApplication::processEvents();
        }
        QVERIFY(m_service->isAuthorized());
        QCOMPARE(statuses.count(), 1);
        QCOMPARE(m_log.take(), line.isEmpty() ? QStringList() : QStringList {line});
    }

    void asking()
    {
        QCOMPARE(m_manager->requests, 0); // never by itself
        m_manager->status = Status::AuthorizedAlways;
        m_service->requestPermission();
        QCOMPARE(m_manager->requests, 1);
        QVERIFY(m_service->isAuthorized());
        QCOMPARE(
            m_log.take().last(), u"LocationPermissionService: Requesting location permission..."_s);
    }

private:
    test::CapturedLog m_log;
    platform::ApplicationActivity m_activity;
    std::unique_ptr<simulated::LocationManager> m_manager;
    std::unique_ptr<LocationPermissionService> m_service;
};

NETVANE_TEST(TestLocationPermissionService)
#include "test_location_permission_service.moc"
