#include "diagnostics/speed_test_service.h"
#include "faked_world.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "wifi/wifi_service.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using World = test::FakedWorld;

namespace {

/// How much each service that works by itself has done so far.
std::vector<qsizetype> workDone(const World& world)
{
    return {world.delegate->wifiService()->updateCount(),
        world.delegate->routerPingService()->pingCount(),
        world.delegate->internetPingService()->pingCount(),
        world.delegate->dnsService()->lookupCount(), qsizetype(world.http.pending.size())};
}

} // namespace

class TestAppDelegate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.take(); }

    void launchDoesNotWaitForTheGateway()
    {
        for (const auto& gateway : {std::optional(u"192.0.2.1"_s), std::optional<QString>()}) {
            init();
            World world;
            world.network.router = gateway;
            world.launch();
            const QStringList atOnce = m_log.take();
            QVERIFY(atOnce.contains(u"Netvane: Application launched successfully"_s));
            QVERIFY(atOnce.filter(u"Default gateway"_s).isEmpty());
            QVERIFY(!world.delegate->routerPingService());
            world.settle();
            const QString router = gateway.value_or(u"192.168.1.1"_s);
            QVERIFY(m_log.take().contains(u"Netvane: Default gateway: "_s + router));
            QCOMPARE(world.delegate->routerPingService()->targetHost(), router);
            QCOMPARE(world.delegate->internetPingService()->targetHost(), u"1.1.1.1"_s);
            for (const auto& later : {std::optional(u"192.0.2.9"_s), {}}) {
                world.network.router = later;
                Q_EMIT world.platform.routeMonitor->routesChanged();
                world.settle();
                QCOMPARE(world.delegate->routerPingService()->targetHost(), u"192.0.2.9"_s);
            }
        }
    }

    /// No line tells of an item that is not there.
    void statusItemLines()
    {
        const QStringList item {u"StatusBarManager: Status bar button created"_s,
            u"StatusBarManager: Button action configured - frame: (0.0, 0.0, 22.0, 22.0)"_s,
            u"StatusBarManager: Status bar item setup complete - should be visible"_s};
        const QString missing = u"ERROR: Failed to create status bar button"_s;
        World world;
        world.host.setPresent(false);
        world.launchAll();
        QVERIFY(m_log.take().contains(u"StatusBarManager: Setting up status bar item..."_s));
        world.clock->advance(3s);
        const QStringList waited = m_log.take();
        QVERIFY(waited.contains(missing) && waited.filter(u"StatusBarManager"_s).isEmpty());
        world.host.setPresent(true);
        QCOMPARE(m_log.take(), item);
        world.clock->advance(3s);
        QVERIFY(!m_log.take().contains(missing));
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

    void sleepAndEnd()
    {
        World world;
        Q_EMIT world.platform.sleepMonitor->didWake(); // before there are services
        world.launchAll();
        const auto atStart = workDone(world);
        world.clock->sleep(1h);
        Q_EMIT world.platform.sleepMonitor->didWake();
        const auto awake = workDone(world);
        world.settle();
        world.clock->advance(60s);
        world.settle();
        const auto running = workDone(world);
        for (size_t i = 0; i < running.size(); ++i) {
            QCOMPARE(awake[i], atStart[i] + 1);
            QVERIFY2(running[i] > awake[i], qPrintable(QString::number(i)));
        }

        world.delegate->speedTestService()->runSpeedTest(nullptr);
        world.delegate->applicationWillTerminate();
        QVERIFY(!world.http.pending.back().owner);
        world.http.pending.pop_back();
        QVERIFY(!world.delegate->speedTestService()->isRunning());
        world.clock->advance(60s);
        world.settle();
        QCOMPARE(workDone(world), running);
        // That of the memory line, once the last look-up's thread has ended and its result is out.
        QTRY_VERIFY((world.clock->advance(1s), world.clock->timerCount() == 1));
    }

    void snapshotsReachTheNotifications()
    {
        World world;
        world.defaults.setBoolean(u"networkNotificationsEnabled"_s, true);
        world.wifi.list = {world.interface};
        world.interface->reading->ssid = u"Home"_s;
        world.launchAll();
        world.notifications.tellSettings(platform::NotificationAuthorization::Authorized);
        // Between two networks there is none for a moment, and after a sleep for longer.
        for (const QString& name : {u"Home"_s, {}, u"Office"_s, u"(sleep)"_s, {}, {}, u"Home"_s,
                 u"(sleep)"_s, u"Home"_s, {}, {}}) {
            if (name == u"(sleep)"_s) {
                world.clock->sleep(1h); // the pause between notifications is over then
                continue;
            }
            world.interface->reading->ssid = name.isEmpty() ? std::nullopt : std::optional(name);
            world.clock->advance(5s);
            world.settle();
            world.notifications.finishAdds();
        }
        QStringList bodies;
        for (const auto& request : world.notifications.added)
            bodies.append(request.body);
        QCOMPARE(bodies,
            (QStringList {u"Connected to Office"_s, u"Connected to Home"_s,
                u"Lost connection to WiFi network"_s}));
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestAppDelegate)
#include "test_app_delegate.moc"
