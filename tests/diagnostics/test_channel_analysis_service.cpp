#include "diagnostics/channel_analysis_service.h"
#include "platform/application_activity.h"
#include "simulated/manual_clock.h"
#include "simulated/wifi.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "wifi/location_permission_service.h"

#include <QTest>

using namespace netvane;
using namespace netvane::diagnostics;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using platform::ChannelBand;
using Status = platform::AuthorizationStatus;
using Table = ChannelAnalysisService::ChannelUtilization;

namespace {

/// One network for each number; 0: its channel is unknown.
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
        m_manager.status = Status::AuthorizedAlways;
        m_permission.checkAuthorizationStatus();
        m_scanner.scans = 0;
        m_service = std::make_unique<ChannelAnalysisService>(m_scanner, m_clock);
        m_service->setLocationPermissionService(&m_permission);
        m_log.take();
    }

    void countsAndKeepsWhatItHasThroughFailures()
    {
        const auto networks = onChannels({11, 0, 6, 6, 1});
        m_service->scanNetworks();
        QVERIFY(m_service->isScanning() && !m_service->lastScanTime());
        m_scanner.finish(networks);
        QCOMPARE(m_service->nearbyNetworks(), networks);
        QCOMPARE(m_service->channelUtilization(), (Table {{1, 1}, {6, 2}, {11, 1}}));
        QCOMPARE(m_service->recommendedChannel(), 1); // the lowest of equals
        QCOMPARE(m_service->lastScanTime(), m_clock.now());
        QVERIFY(!m_service->isScanning() && m_log.take().isEmpty());

        m_clock.advance(30s);
        for (const auto& [kind, problem] : {std::pair(base::FailureKind::NotAllowed,
                                                u"The system does not allow this user to scan"_s),
                 {base::FailureKind::NotFound, u"not now"_s}}) {
            m_service->scanNetworks(); // at once after a failure
            QVERIFY(!m_service->problem());
            m_scanner.finish(base::Failure {kind, u"not now"_s});
            QVERIFY(!m_service->isScanning());
            QCOMPARE(m_service->problem(), problem);
        }
        QCOMPARE(m_scanner.scans, 3);
        QCOMPARE(m_log.take(), QStringList {u"ChannelAnalysisService: Scan failed: not now"_s});
        QCOMPARE(m_service->nearbyNetworks(), networks);
        m_service->scanNetworks();
        m_scanner.finish(onChannels({}));
        QVERIFY(!m_service->recommendedChannel());
    }

    void withoutPermission()
    {
        const QString line = u"ChannelAnalysisService: Location permission required for scanning"_s;
        m_manager.status = Status::Denied;
        m_permission.checkAuthorizationStatus();
        m_log.take();
        m_service->scanNetworks();
        QCOMPARE(m_log.take(), QStringList {line});
        QVERIFY(m_scanner.scans == 0 && !m_service->isScanning());
    }

    /// One scan at a time, and a pause after a success that a change of the wall clock does not
    /// affect.
    void throttle()
    {
        m_service->scanNetworks();
        m_clock.advance(60s);
        m_service->scanNetworks();
        QCOMPARE(m_scanner.scans, 1);
        m_scanner.finish(onChannels({1}));
        m_clock.setWall(m_clock.now() + 24h);
        m_clock.advance(29'999ms);
        m_service->scanNetworks();
        QCOMPARE(m_scanner.scans, 1);
        QVERIFY(m_service->problem());
        m_clock.setWall(m_clock.now() - 48h);
        m_clock.sleep(1ms); // which counts
        m_service->scanNetworks();
        QCOMPARE(m_scanner.scans, 2);
        m_service.reset(); // during a scan
        m_scanner.finish(onChannels({1}));
        QCOMPARE(m_log.take(), QStringList());
    }

private:
    test::CapturedLog m_log;
    platform::ApplicationActivity m_activity;
    simulated::LocationManager m_manager;
    simulated::ManualClock m_clock;
    simulated::NetworkScanner m_scanner;
    wifi::LocationPermissionService m_permission {m_manager, m_activity};
    std::unique_ptr<ChannelAnalysisService> m_service;
};

NETVANE_TEST(TestChannelAnalysisService)
#include "test_channel_analysis_service.moc"
