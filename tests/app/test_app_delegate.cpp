#include "app/status_bar_manager.h"
#include "diagnostics/speed_test_service.h"
#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "insights/report_service.h"
#include "launched_world.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QApplication>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using Status = platform::AuthorizationStatus;

namespace {

using World = test::LaunchedWorld;

/// How much each service that works by itself has done so far.
std::vector<qsizetype> workDone(const World& world)
{
    return {world.delegate->wifiService()->updateCount(),
        world.delegate->routerPingService()->pingCount(),
        world.delegate->internetPingService()->pingCount(),
        world.delegate->dnsService()->lookupCount(), qsizetype(world.http->pending.size())};
}

} // namespace

class TestAppDelegate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.take(); }

    /// (The lines of a launch in their order: test_program.)
    void nobodyWaitsForTheGateway()
    {
        World world;
        world.location->status = Status::Denied;
        world.network->router = u"192.0.2.1"_s;
        world.launch();
        const QStringList atOnce = m_log.take();
        world.settle();
        QVERIFY(atOnce.contains(u"Netvane: Application launched successfully"_s));
        QVERIFY(world.delegate->tracerouteService());
        QVERIFY(atOnce.contains(u"Netvane: Location permission status: 2"_s));
        QVERIFY(atOnce.filter(u"Default gateway"_s).isEmpty());
        QVERIFY(m_log.take().contains(u"Netvane: Default gateway: 192.0.2.1"_s));
    }

    void probeTargets_data()
    {
        QTest::addColumn<std::optional<QString>>("gateway");
        QTest::addColumn<QString>("router");
        QTest::newRow("known") << std::optional(u"192.0.2.1"_s) << u"192.0.2.1"_s;
        QTest::newRow("absent") << std::optional<QString>() << u"192.168.1.1"_s;
    }

    void probeTargets()
    {
        QFETCH(std::optional<QString>, gateway);
        QFETCH(QString, router);
        World world;
        world.network->router = gateway;
        world.launch();
        QVERIFY(!world.delegate->routerPingService());
        world.settle();
        QVERIFY(m_log.take().contains(u"Netvane: Default gateway: "_s + router));
        QCOMPARE(world.delegate->routerPingService()->targetHost(), router);
        QCOMPARE(world.delegate->routerPingService()->targetName(), u"router"_s);
        QCOMPARE(world.delegate->internetPingService()->targetHost(), probes::kInternetTarget);
        QCOMPARE(world.delegate->internetPingService()->targetName(), u"internet"_s);
        QVERIFY(world.delegate->routerPingService()->isRunning());
        QVERIFY(world.delegate->internetPingService()->isRunning());
    }

    void gatewayAnswerAfterTheEnd()
    {
        World gone;
        gone.launch();
        gone.delegate.reset();
        gone.settle();
        QVERIFY(m_log.take().filter(u"Default gateway"_s).isEmpty());
        World stopped;
        stopped.launch();
        stopped.delegate->applicationWillTerminate();
        stopped.settle();
        QVERIFY(!m_log.take().contains(u"Netvane: All services started"_s));
        QCOMPARE(stopped.clock->timerCount(), 1); // that of the memory line
    }

    void memoryLine()
    {
        World world;
        world.launchAll();
        const auto count = [this] {
            return m_log.take().filter(QRegularExpression(u"^Memory: \\d+\\.\\d MB$"_s)).size();
        };
        world.clock->advance(29'999ms);
        QCOMPARE(count(), 0);
        world.clock->advance(1ms);
        QCOMPARE(count(), 1);
        world.clock->advance(60s);
        QCOMPARE(count(), 2);
    }

    void becomingActive()
    {
        World world;
        world.delegate->applicationDidBecomeActive(); // sooner than anything exists
        world.launchAll();
        world.clock->advance(wifi::WiFiService::minUpdateInterval);
        const int passes = world.delegate->wifiService()->updateCount();
        world.location->status = Status::AuthorizedAlways; // without a word
        m_log.take();
        world.delegate->applicationDidBecomeActive();
        QCOMPARE(
            m_log.take().first(), u"Netvane: App became active - checking location permission"_s);
        QVERIFY(world.delegate->locationPermissionService()->isAuthorized());
        QCOMPARE(world.delegate->wifiService()->updateCount(), passes + 1);
    }

    void awakeAfterASleep()
    {
        World world;
        Q_EMIT world.platform.sleepMonitor->didWake(); // sooner than anything exists
        world.launchAll();
        world.settle();
        const auto before = workDone(world);
        world.clock->sleep(1h);
        Q_EMIT world.platform.sleepMonitor->didWake();
        const auto after = workDone(world);
        for (size_t i = 0; i < before.size(); ++i)
            QCOMPARE(after[i], before[i] + 1);
    }

    void terminating()
    {
        World world;
        world.launchAll();
        const auto atStart = workDone(world);
        world.clock->advance(60s);
        world.settle();
        const auto running = workDone(world);
        for (size_t i = 0; i < running.size(); ++i)
            QVERIFY2(running[i] > atStart[i], qPrintable(QString::number(i)));

        world.delegate->speedTestService()->runSpeedTest(nullptr);
        world.delegate->applicationWillTerminate();
        QVERIFY(world.transfers->started.front()->isGone);
        QVERIFY(!world.delegate->speedTestService()->isRunning());
        world.clock->advance(60s);
        world.settle();
        QCOMPARE(workDone(world), running);
        QCOMPARE(world.clock->timerCount(), 1); // that of the memory line

        world.delegate->wifiService()->startMonitoring();
        world.delegate->applicationWillTerminate(); // only the first time counts
        QCOMPARE(world.clock->timerCount(), 2);
    }

    void reportOfTheRunningServices()
    {
        World world;
        world.launch();
        auto& service = *world.delegate->reportService();
        QCOMPARE(service.currentReport()->count(u"- No data available"_s), 2);
        world.settle();
        world.clock->advance(7ms);
        world.connections->tell(platform::ConnectionState::Ready, {}, 1); // the router
        world.clock->advance(13ms);
        world.connections->tell(platform::ConnectionState::Ready);
        world.settle();
        world.clock->advance(500ms);
        const QString report = *service.currentReport();
        QVERIFY2(report.contains(u"## Router Performance\n- Ping: 7.0 ms"_s), qPrintable(report));
        QVERIFY(report.contains(u"## Internet Performance\n- Ping: 20.0 ms"_s));
        QVERIFY(report.contains(u"\n- DNS Server: Unknown"_s));
    }

    void snapshotsReachTheNotifications()
    {
        auto* interface = new simulated::WiFiInterface;
        World world;
        world.platform.userDefaults->setBoolean(u"networkNotificationsEnabled"_s, true);
        auto client = std::make_shared<simulated::WiFiClient>();
        client->list.emplace_back(interface);
        world.platform.wifiClient = client;
        interface->reading->ssid = u"Home"_s;
        world.launchAll();
        world.userNotifications->tellSettings(simulated::UserNotifications::Status::Authorized);
        world.clock->advance(5s);
        world.settle();
        interface->reading->ssid = u"Office"_s;
        world.clock->advance(5s);
        world.settle();
        QCOMPARE(world.userNotifications->added.size(), 1u);
        QCOMPARE(world.userNotifications->added[0].body, u"Connected to Office"_s);
        QVERIFY(insights::OnboardingService::shared());
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestAppDelegate)
#include "test_app_delegate.moc"
