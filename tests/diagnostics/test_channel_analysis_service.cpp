#include "diagnostics/channel_analysis_service.h"
#include "platform/application_activity.h"
#include "simulated/manual_clock.h"
#include "simulated/wifi.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using platform::ChannelBand;
using Status = platform::AuthorizationStatus;
using Table = ChannelAnalysisService::ChannelUtilization;

namespace {

/// One network for each number; 0: its channel is not told.
std::vector<platform::NearbyNetwork> onChannels(const std::vector<int>& numbers)
{
    std::vector<platform::NearbyNetwork> networks;
    for (const int number : numbers) {
        platform::NearbyNetwork network {.ssid = QString::number(networks.size())};
        if (number != 0)
            network.channel = platform::WiFiChannel {number, ChannelBand::TwoGHz};
        networks.push_back(network);
    }
    return networks;
}

} // namespace

class TestChannelAnalysisService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_clock = std::make_unique<simulated::ManualClock>();
        m_scanner = std::make_unique<simulated::NetworkScanner>();
        m_manager.status = Status::AuthorizedAlways;
        m_permission = std::make_unique<wifi::LocationPermissionService>(m_manager, m_activity);
        m_service = std::make_unique<ChannelAnalysisService>(*m_scanner, *m_clock);
        m_service->setLocationPermissionService(m_permission.get());
        m_log.take();
    }

    void counting_data()
    {
        QTest::addColumn<std::vector<int>>("channels");
        QTest::addColumn<Table>("table");
        QTest::addColumn<int>("recommended"); // 0: absent
        QTest::newRow("nothing found") << std::vector<int> {} << Table {} << 0;
        QTest::newRow("some") << std::vector {1, 1, 6, 6, 6, 11} << Table {{1, 2}, {6, 3}, {11, 1}}
                              << 11;
        QTest::newRow("equals: the lowest, and never an unused one")
            << std::vector {11, 1} << Table {{1, 1}, {11, 1}} << 1;
        QTest::newRow("without channel") << std::vector {0, 0, 36} << Table {{36, 1}} << 36;
        QTest::newRow("none with channel") << std::vector {0} << Table {} << 0;
    }

    void counting()
    {
        QFETCH(std::vector<int>, channels);
        QFETCH(Table, table);
        const auto networks = onChannels(channels);
        m_service->scanNetworks();
        QVERIFY(m_service->isScanning() && !m_service->lastScanTime());
        m_scanner->finish(networks);
        QCOMPARE(m_service->nearbyNetworks(), networks);
        QCOMPARE(m_service->channelUtilization(), table);
        QTEST(m_service->recommendedChannel().value_or(0), "recommended");
        QCOMPARE(m_service->lastScanTime(), m_clock->now());
        QVERIFY(!m_service->isScanning());
        QCOMPARE(m_log.take(), QStringList());
    }

    void withoutPermission()
    {
        const QStringList line {
            u"ChannelAnalysisService: Location permission required for scanning"_s};
        m_manager.status = Status::Denied;
        m_permission->checkAuthorizationStatus();
        m_log.take();
        const QSignalSpy changes(m_service.get(), &ChannelAnalysisService::isScanningChanged);
        m_service->scanNetworks();
        QCOMPARE(m_log.take(), line);
        m_service->setLocationPermissionService(nullptr);
        m_service->scanNetworks();
        QCOMPARE(m_log.take(), line);
        QCOMPARE(m_scanner->scans, 0);
        QCOMPARE(changes.count(), 0);
    }

    /// One at a time, and so long after the end of a success, whatever is done to the wall clock.
    void throttle()
    {
        m_service->scanNetworks();
        m_clock->advance(60s);
        m_service->scanNetworks();
        QCOMPARE(m_scanner->scans, 1);
        m_scanner->finish(onChannels({1}));
        m_clock->setWall(m_clock->now() + 24h);
        m_clock->advance(29'999ms);
        m_service->scanNetworks();
        QCOMPARE(m_scanner->scans, 1);
        m_clock->setWall(m_clock->now() - 48h);
        m_clock->advance(1ms);
        m_service->scanNetworks();
        QCOMPARE(m_scanner->scans, 2);
        m_service.reset(); // during a scan
        m_scanner->finish(onChannels({1}));
        QCOMPARE(m_log.take(), QStringList());
    }

    void failures_data()
    {
        QTest::addColumn<base::FailureKind>("kind");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("refused") << base::FailureKind::NotAllowed
                                 << QStringList {u"ChannelAnalysisService: Scan failed: not now"_s};
        QTest::newRow("no interface") << base::FailureKind::NotFound << QStringList();
    }

    void failures()
    {
        QFETCH(base::FailureKind, kind);
        const auto networks = onChannels({1, 6});
        m_service->scanNetworks();
        m_scanner->finish(networks);
        const auto scanned = m_service->lastScanTime();
        m_clock->advance(30s);
        m_service->scanNetworks();
        m_scanner->finish(base::Failure {kind, u"not now"_s});
        QTEST(m_log.take(), "lines");
        QVERIFY(!m_service->isScanning());
        QCOMPARE(m_service->nearbyNetworks(), networks);
        QCOMPARE(m_service->channelUtilization(), (Table {{1, 1}, {6, 1}}));
        QCOMPARE(m_service->lastScanTime(), scanned);
        m_service->scanNetworks(); // at once
        QCOMPARE(m_scanner->scans, 3);
    }

private:
    test::CapturedLog m_log;
    platform::ApplicationActivity m_activity;
    simulated::LocationManager m_manager;
    std::unique_ptr<simulated::ManualClock> m_clock;
    std::unique_ptr<simulated::NetworkScanner> m_scanner;
    std::unique_ptr<wifi::LocationPermissionService> m_permission;
    std::unique_ptr<ChannelAnalysisService> m_service;
};

NETVANE_TEST(TestChannelAnalysisService)
#include "test_channel_analysis_service.moc"
