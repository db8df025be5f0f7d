#include "simulated/manual_clock.h"
#include "simulated/wifi.h"
#include "support/captured_log.h"
#include "support/settle.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_metrics_history.h"
#include "wifi/wifi_service.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>

using namespace netvane;
using namespace netvane::wifi;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using Status = platform::AuthorizationStatus;

namespace {

const platform::LinkReading kHome {
    .ssid = u"Home"_s,
    .signalDbm = -60,
    .noiseDbm = -92,
    .transmitRateMbps = 866.7,
    .band = platform::ChannelBand::FiveGHz,
    .interfaceName = u"wlan0"_s,
};

class CountingObserver : public WiFiSnapshotObserver {
public:
    void checkForNetworkChanges(const WiFiInfo& info) override { snapshots.push_back(info); }
    std::vector<WiFiInfo> snapshots;
};

} // namespace

class TestWiFiService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_clock = std::make_unique<simulated::ManualClock>();
        m_interface = std::make_shared<simulated::WiFiInterface>();
        m_interface->reading = kHome;
        m_client = std::make_shared<simulated::WiFiClient>();
        m_client->list = {m_interface};
        m_manager.status = Status::NotDetermined;
        m_permission = std::make_unique<LocationPermissionService>(m_manager, m_activity);
        m_log.take();
    }

    /// Running work still reads the clock.
    void cleanup() { m_queue.waitForDone(); }

    void oddReadings()
    {
        for (const double rate : {0.0, -1.0, double(INFINITY), double(NAN), 3e9})
            QVERIFY(!makeWiFiInfo({.transmitRateMbps = rate}, {}).linkRate);
        QCOMPARE(makeWiFiInfo({.transmitRateMbps = 11529.6}, {}).linkRate, 11529); // Wi-Fi 7
        const auto info = makeWiFiInfo({.signalDbm = 0, .noiseDbm = 0}, {});
        QVERIFY(!info.signalStrength && !info.noise);
    }

    /// A rate index takes precedence over the band.
    void standards()
    {
        using enum WiFiFrequency;
        const std::tuple<std::optional<int>, WiFiFrequency, QString> rows[]
            = {{{}, sixGHz, u"802.11ax (WiFi 6E)"_s}, {{}, unknown, u"Unknown"_s},
                {9, sixGHz, u"802.11ac (WiFi 5)"_s}, {10, fiveGHz, u"802.11ax (WiFi 6)"_s}};
        for (const auto& [mcs, band, standard] : rows)
            QCOMPARE((WiFiInfo {.frequency = band, .mcsIndex = mcs}.phyMode()), standard);
    }

    void seriesOfTheGraphs()
    {
        const std::pair<std::vector<std::optional<int>>, std::vector<double>> rows[] = {
            {{-54, -54, -54}, {54, 54}}, // begins with two equal ones
            {{-60, -58, 58}, {60, 58}}, // equal by magnitude
            {{-60, {}, -61}, {60, 61}},
            {{-1, -2, -3, -4, -5, -6, -7, -8, -9, -10, -11}, {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
            {{std::numeric_limits<int>::min()}, {2147483648.0}},
        };
        for (const auto& [readings, expected] : rows) {
            WiFiMetricsHistory history(*m_clock);
            for (const auto signal : readings)
                history.addDataPoint({}, signal, {});
            std::vector<double> values;
            for (const auto& point : history.signalHistory())
                values.push_back(point.value);
            QCOMPARE(values, expected);
        }
    }

    void passesAreSpacedAndNeverOverlap()
    {
        const auto service = makeService();
        m_clock->advance(50ms);
        service->updateWiFiInfo();
        QCOMPARE(service->updateCount(), 1); // too soon
        test::settle(m_queue);
        m_interface->isHeld = true;
        m_clock->advance(100ms);
        service->updateWiFiInfo();
        QCOMPARE(service->updateCount(), 2);
        QTRY_COMPARE(m_interface->reads, 2);
        m_clock->advance(1s);
        service->updateWiFiInfo();
        QCOMPARE(service->updateCount(), 2); // still in flight
        m_interface->letGo.release();
        test::settle(m_queue);
        service->updateWiFiInfo();
        QCOMPARE(service->updateCount(), 3);
        m_interface->letGo.release();
    }

    void whatWasReadBeforeASleepIsReadAnew()
    {
        const auto service = makeService();
        test::settle(m_queue);
        m_interface->isHeld = true;
        m_clock->advance(5s);
        QTRY_COMPARE(m_interface->reads, 2);
        m_clock->sleep(1h);
        m_interface->isHeld = false;
        m_interface->reading->signalDbm = -71;
        m_interface->letGo.release();
        test::settle(m_queue);
        QCOMPARE(m_interface->reads, 3);
        QCOMPARE(service->currentWiFi()->signalStrength, -71);
    }

    void timerSamplesWhateverTheWallClockDoes()
    {
        const auto service = makeService();
        test::settle(m_queue);
        m_clock->setWall(m_clock->now() - 24h);
        for (int i = 0; i < 9; ++i)
            nextPass();
        QCOMPARE(service->updateCount(), 10);
        QCOMPARE(m_log.take().filter(u"WiFiService"_s), QStringList {u"WiFiService: Update #10"_s});
        service->stopMonitoring();
        m_clock->advance(60s);
        QCOMPARE(service->updateCount(), 10);
        QCOMPARE(m_clock->timerCount(), 0);
    }

    void whatCountsAsChange()
    {
        auto& reading = *m_interface->reading;
        const std::pair<std::function<void()>, bool> rows[] = {
            {[&] { reading.ssid = u"Office"_s; }, true}, {[&] { reading.signalDbm = -61; }, true},
            {[&] { reading.transmitRateMbps = 780; }, true},
            {[&] { reading.noiseDbm = -80; }, false}};
        CountingObserver observer;
        const auto service = makeService();
        service->setNetworkNotificationService(&observer);
        test::settle(m_queue);
        for (const auto& [change, isPublished] : rows) {
            const QSignalSpy changes(service.get(), &WiFiService::currentWiFiChanged);
            change();
            nextPass();
            QCOMPARE(changes.count(), isPublished ? 1 : 0);
            QCOMPARE(observer.snapshots.back().noise, reading.noiseDbm);
        }
        QCOMPARE(observer.snapshots.size(), 5U); // every pass, published or not
    }

    void adapterComesAndGoes()
    {
        WiFiService without(nullptr, *m_clock, m_queue);
        QCOMPARE(without.errorMessage(), u"Unable to initialize Wi-Fi client"_s);
        m_client->list.clear();
        const auto service = makeService();
        test::settle(m_queue);
        for (const auto* each : {&without, service.get()})
            QCOMPARE(each->errorMessage(), u"No Wi-Fi interface available"_s);
        m_client->list = {m_interface};
        nextPass();
        QCOMPARE(service->currentWiFi()->ssid, u"Home"_s);

        m_interface->isOn = false;
        m_clock->advance(5s);
        QVERIFY(!service->currentWiFi() && !service->isUpdating());
        QCOMPARE(service->errorMessage(), u"Wi-Fi is turned off"_s);
        m_interface->isOn = true;

        m_interface->reading.reset();
        const auto other = std::make_shared<simulated::WiFiInterface>();
        other->reading = platform::LinkReading {.ssid = u"Other"_s};
        m_client->list = {other};
        nextPass();
        QCOMPARE(service->currentWiFi()->ssid, u"Other"_s); // in the same pass

        m_interface->reading = kHome;
        m_client->list.insert(m_client->list.begin(), m_interface);
        nextPass();
        QCOMPARE(service->currentWiFi()->ssid, u"Other"_s); // as long as it has a link
        CountingObserver observer;
        service->setNetworkNotificationService(&observer);
        other->reading = platform::LinkReading {};
        nextPass();
        QCOMPARE(service->currentWiFi()->ssid, u"Home"_s);
        QCOMPARE(observer.snapshots.size(), 1U); // nothing is told of a loss between
        m_interface->reading.reset(); // still listed, but no longer there when read
        nextPass();
        QCOMPARE(service->errorMessage(), u"No Wi-Fi interface available"_s);
        QVERIFY(!service->currentWiFi() && !service->isUpdating());
    }

    void onlyAlwaysIsPermission()
    {
        for (const auto status :
            {Status::Denied, Status::AuthorizedWhenInUse, Status::AuthorizedAlways}) {
            m_manager.status = status;
            m_permission->checkAuthorizationStatus();
            QCOMPARE(m_permission->authorizationStatus(), status);
            QCOMPARE(m_permission->isAuthorized(), status == Status::AuthorizedAlways);
        }
        QCOMPARE(m_log.take(),
            QStringList {u"LocationPermissionService: Authorization status changed - "
                         "isAuthorized: true, status: 3"_s});
        QCOMPARE(m_manager.requests, 0); // never by itself
        m_manager.status = Status::Denied; // elsewhere, before the program is activated
        Q_EMIT m_activity.didBecomeActive();
        QVERIFY(!m_permission->isAuthorized());
    }

    void withoutNameThePermissionDecides()
    {
        m_interface->reading->ssid.reset();
        const auto service = makeService();
        service->setLocationPermissionService(*m_permission);
        test::settle(m_queue);
        QVERIFY(service->needsLocationPermission());
        QCOMPARE(service->errorMessage(),
            u"Location permission required to access Wi-Fi network name."_s);
        m_clock->advance(1s);
        const int before = service->updateCount();
        m_manager.change(Status::AuthorizedAlways);
        test::settle(m_queue);
        QVERIFY(!service->needsLocationPermission());
        QCOMPARE(service->updateCount(), before + 1); // the grant itself asks for a pass
        QCOMPARE(service->errorMessage(),
            u"Unable to read Wi-Fi network name. Please check your Wi-Fi connection."_s);
        m_manager.change(Status::Denied);
        test::settle(m_queue);
        QVERIFY(service->needsLocationPermission());
        m_interface->reading->ssid = u"Home"_s; // which proves that it is granted
        nextPass();
        QVERIFY(m_permission->isAuthorized() && !service->needsLocationPermission());
        QCOMPARE(m_log.take().filter(u"updated externally"_s).size(), 1);
        Q_EMIT m_activity.didBecomeActive();
        QVERIFY(m_permission->isAuthorized()); // until the system says something else
        m_manager.status = Status::Restricted;
        Q_EMIT m_activity.didBecomeActive();
        QVERIFY(!m_permission->isAuthorized());
    }

    void resultsOfADestroyedServiceAreDropped()
    {
        m_interface->isHeld = true;
        auto service = makeService();
        QTRY_COMPARE(m_interface->reads, 1);
        service.reset();
        m_interface->letGo.release();
        test::settle(m_queue);
        QCOMPARE(m_clock->timerCount(), 0);
    }

private:
    void nextPass()
    {
        m_clock->advance(5s);
        test::settle(m_queue);
    }

    std::unique_ptr<WiFiService> makeService()
    {
        return std::make_unique<WiFiService>(m_client, *m_clock, m_queue);
    }

    test::CapturedLog m_log;
    platform::ApplicationActivity m_activity;
    simulated::LocationManager m_manager;
    std::unique_ptr<simulated::ManualClock> m_clock;
    std::shared_ptr<simulated::WiFiInterface> m_interface;
    std::shared_ptr<simulated::WiFiClient> m_client;
    std::unique_ptr<LocationPermissionService> m_permission;
    base::WorkQueue m_queue;
};

NETVANE_TEST(TestWiFiService)
#include "test_wifi_service.moc"
