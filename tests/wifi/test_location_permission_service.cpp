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

    /// However the service learns of a grant, it logs it once; a second time changes nothing.
    void grants()
    {
        const QString line = u"LocationPermissionService: Authorization status "_s;
        const QString changed = line + u"changed - isAuthorized: true, status: 3"_s;
        const std::pair<std::function<void()>, QStringList> ways[] = {
            {[&] { m_service->checkAuthorizationStatus(); }, {changed}},
            {[&] { Q_EMIT m_activity.didBecomeActive(); }, {changed}},
            {[&] { Q_EMIT m_manager->didChangeAuthorization(m_manager->status); }, {}},
            {[&] { m_service->updateAuthorizationStatus(Status::AuthorizedAlways); },
                {line + u"updated externally - status: 3, isAuthorized: true"_s}},
        };
        for (const auto& [learn, lines] : ways) {
            init();
            const QSignalSpy statuses(
                m_service.get(), &LocationPermissionService::authorizationStatusChanged);
            m_manager->status = Status::AuthorizedAlways;
            learn();
            QCoreApplication::processEvents();
            QVERIFY(m_service->isAuthorized());
            learn();
            QCoreApplication::processEvents();
            QCOMPARE(statuses.count(), 1);
            QCOMPARE(m_log.take(), lines);
        }
    }

    void askingAndToldByAnotherService()
    {
        QCOMPARE(m_manager->requests, 0); // never by itself
        m_service->updateAuthorizationStatus(Status::AuthorizedAlways);
        QVERIFY(!m_service->isAuthorized()); // not inside the caller's call
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
