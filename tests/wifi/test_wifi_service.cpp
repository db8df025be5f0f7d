#include "simulated/manual_clock.h"
#include "simulated/wifi.h"
#include "support/captured_log.h"
#include "support/settle.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"
#include "wifi/wifi_snapshot_observer.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

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

    /// Work that is left over still reads the clock.
    void cleanup() { m_queue.waitForDone(); }

    void readingBecomesSnapshot()
    {
        const auto service = makeService();
        test::settle(m_queue);
        const WiFiInfo expected {.timestamp = m_clock->now(),
            .ssid = u"Home"_s,
            .frequency = WiFiFrequency::fiveGHz,
            .linkRate = 866,
            .signalStrength = -60,
            .noise = -92,
            .interfaceName = u"wlan0"_s};
        QCOMPARE(service->currentWiFi(), expected);
        QVERIFY(!service->errorMessage());
    }

    void oddReadings()
    {
        for (const double rate : {0.0, -1.0, double(INFINITY), double(NAN), 3e9})
            QVERIFY(!makeWiFiInfo({.transmitRateMbps = rate}, {}).linkRate);
        QCOMPARE(makeWiFiInfo({.transmitRateMbps = 11529.6}, {}).linkRate, 11529); // Wi-Fi 7
        const auto info = makeWiFiInfo({.signalDbm = 0, .noiseDbm = 0}, {});
        QVERIFY(!info.signalStrength && !info.noise);
        QCOMPARE(info.frequency, WiFiFrequency::unknown);
        QCOMPARE(makeWiFiInfo({.band = platform::ChannelBand::Unknown}, {}).frequency,
            WiFiFrequency::fiveGHz);
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
        service->startMonitoring();
        QCOMPARE(m_log.take(),
            QStringList {u"WiFiService: startMonitoring() called but timer already exists"_s});
        service->stopMonitoring();
        m_clock->advance(60s);
        QCOMPARE(service->updateCount(), 10);
        QCOMPARE(m_clock->timerCount(), 0);
    }

    void whatCountsAsChange_data()
    {
        QTest::addColumn<platform::LinkReading>("reading");
        QTest::addColumn<bool>("published");
        const auto row = [](const char* name, bool published, auto change) {
            auto reading = kHome;
            change(reading);
            QTest::newRow(name) << reading << published;
        };
        row("nothing", false, [](auto&) {});
        row("name", true, [](auto& r) { r.ssid = u"Office"_s; });
        row("signal", true, [](auto& r) { r.signalDbm = -61; });
        row("rate", true, [](auto& r) { r.transmitRateMbps = 780; });
        row("noise", false, [](auto& r) { r.noiseDbm = -80; });
        row("band", false, [](auto& r) { r.band = platform::ChannelBand::TwoGHz; });
    }

    void whatCountsAsChange()
    {
        QFETCH(platform::LinkReading, reading);
        CountingObserver observer;
        const auto service = makeService();
        service->setNetworkNotificationService(&observer);
        test::settle(m_queue);
        const QSignalSpy changes(service.get(), &WiFiService::currentWiFiChanged);
        m_interface->reading = reading;
        nextPass();
        QTEST(changes.count() == 1, "published");
        QCOMPARE(observer.snapshots.size(), 2U); // every pass, published or not
        QCOMPARE(observer.snapshots.back().noise, reading.noiseDbm);
    }

    void radioOffIsToldAtOnce()
    {
        CountingObserver observer;
        const auto service = makeService();
        test::settle(m_queue);
        service->setNetworkNotificationService(&observer);
        m_interface->isOn = false;
        m_clock->advance(5s);
        QVERIFY(!service->currentWiFi());
        QCOMPARE(service->errorMessage(), u"Wi-Fi is turned off"_s);
        QVERIFY(!service->isUpdating());
        QVERIFY(observer.snapshots.empty());
        m_interface->isOn = true;
        nextPass();
        QVERIFY(service->currentWiFi() && !service->errorMessage());
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

        m_interface->reading.reset();
        const auto other = std::make_shared<simulated::WiFiInterface>();
        other->reading = platform::LinkReading {.ssid = u"Other"_s};
        m_client->list = {other};
        nextPass();
        QCOMPARE(service->currentWiFi()->ssid, u"Other"_s); // in the same pass

        other->reading.reset(); // still listed, but no longer there when read
        nextPass();
        QCOMPARE(service->errorMessage(), u"No Wi-Fi interface available"_s);
        QVERIFY(!service->currentWiFi() && !service->isUpdating());
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
