#include "diagnostics/channel_analysis_service.h"
#include "platform/url_opener.h"
#include "support/fake_http_client.h"
#include "support/fake_location_manager.h"
#include "support/fake_network_scanner.h"
#include "support/manual_clock.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/channel_analysis_state.h"
#include "wifi/location_permission_service.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using test::FakeLocationManager;
using test::ViewFixture;
using ui::ChannelAnalysisState;

namespace {

std::vector<platform::NearbyNetwork> networksOn(const QList<int>& channels)
{
    std::vector<platform::NearbyNetwork> networks;
    for (const int channel : channels)
        networks.push_back(
            {.channel = platform::WiFiChannel {channel, platform::ChannelBand::FiveGHz}});
    return networks;
}

struct World {
    explicit World(
        FakeLocationManager::Status status = FakeLocationManager::Status::AuthorizedAlways)
    {
        location.status = status;
        permission.checkAuthorizationStatus();
        service.setLocationPermissionService(&permission);
        useChannel(6);
    }

    void useChannel(int number) { scanner.currentChannel = platform::WiFiChannel {number, {}}; }
    void find(const QList<int>& channels)
    {
        state.scan();
        scanner.finish(networksOn(channels));
        clock.advance(diagnostics::ChannelAnalysisService::maxScanInterval);
    }

    test::ManualClock clock;
    FakeLocationManager location;
    platform::ApplicationActivity activity;
    test::FakeUrlOpener opener;
    test::FakeNetworkScanner scanner;
    wifi::LocationPermissionService permission {location, activity};
    diagnostics::ChannelAnalysisService service {scanner, clock};
    ChannelAnalysisState state {service, permission, scanner, opener, clock};
};

ViewFixture show(World& world)
{
    return ViewFixture(
        u"ChannelAnalysisView"_s, {{u"viewState"_s, QVariant::fromValue(&world.state)}}, 388);
}

const QString kHint = u"Tap 'Scan' to analyze nearby networks and find the best channel."_s;

} // namespace

class TestChannelAnalysisView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutPermissionThereIsOnlyTheWayToIt()
    {
        World world(FakeLocationManager::Status::Denied);
        ViewFixture view = show(world);
        QCOMPARE(view.texts(),
            QStringList({u"Channel Analysis"_s, u"Scan"_s,
                u"Location permission required to scan nearby networks."_s,
                u"Open System Settings"_s}));
        view.click(view.find("text", u"Open System Settings"_s));
        QCOMPARE(world.opener.opened, QList<QUrl> {platform::kPrivacySettingsUrl});
        view.picture(u"channels-permission"_s);
        world.location.change(FakeLocationManager::Status::AuthorizedAlways);
        QTRY_COMPARE(view.texts(), QStringList({u"Channel Analysis"_s, u"Scan"_s, kHint}));
        view.picture(u"channels-hint"_s);
        QCOMPARE(view.problems(), QStringList());
    }

    void scansAndShowsWhatItFound()
    {
        World world;
        ViewFixture view = show(world);
        view.click(view.find("text", u"Scan"_s));
        QCOMPARE(world.scanner.scans, 1);
        QCOMPARE(view.texts(), QStringList({u"Channel Analysis"_s, u"Current Channel"_s, u"6"_s}));
        world.scanner.finish(networksOn({6, 11, 1, 1, 6, 6}));
        world.clock.advance(12s);
        QCOMPARE(view.texts(),
            QStringList(
                {u"Channel Analysis"_s, u"Scan"_s, u"Networks per Channel"_s, u"Current Channel"_s,
                    u"6"_s, u"Recommended"_s, u"11"_s, u"Last scan: 12 sec ago"_s}));
        QCOMPARE(world.state.bars(),
            QList<ui::ChartBar>({{u"1"_s, 2, ui::accent::LightBlue}, {u"6"_s, 3, ui::accent::Blue},
                {u"11"_s, 1, ui::accent::LightBlue}}));
        QCOMPARE(world.state.chartSummary(),
            u"Channel 1: 2 networks, Channel 6 (current): 3 networks, Channel 11: 1 network"_s);
        view.picture(u"channels-typical"_s);
        QCOMPARE(view.problems(), QStringList());
    }

    void recommendsOnlyAnotherChannel_data()
    {
        QTest::addColumn<QList<int>>("found");
        QTest::addColumn<QVariant>("recommended");
        QTest::newRow("the current one is the best") << QList<int> {1, 1, 6} << QVariant();
        QTest::newRow("another is") << QList<int> {1, 6, 6} << QVariant(1);
        QTest::newRow("nobody is there") << QList<int>() << QVariant();
    }
    void recommendsOnlyAnotherChannel()
    {
        QFETCH(QList<int>, found);
        World world;
        world.state.setShown(true);
        world.find(found);
        QCOMPARE(world.state.currentChannel(), QVariant(6));
        QTEST(world.state.recommendedChannel(), "recommended");
    }

    void readsTheChannelWhenItComesIntoSightAndAfterAScan()
    {
        World world;
        world.find({6});
        QVERIFY(!world.state.currentChannel().isValid());
        world.state.setShown(true);
        QCOMPARE(world.state.currentChannel(), QVariant(6));
        world.useChannel(36);
        world.find({6, 36});
        QCOMPARE(world.state.currentChannel(), QVariant(36));
        world.scanner.currentChannel.reset();
        world.state.setShown(false);
        world.state.setShown(true);
        QVERIFY(!world.state.currentChannel().isValid());
    }

    void isQuietWhileNothingThatIsShownChanges()
    {
        World world;
        world.state.setShown(true);
        world.find({1, 6});
        QSignalSpy changed(&world.state, &ChannelAnalysisState::changed);
        world.clock.advance(30s); // to the first minute, where only the text changes
        QCOMPARE(changed.size(), 30);
        world.clock.advance(59s);
        QCOMPARE(changed.size(), 30);
        world.state.setShown(false);
        world.clock.advance(1h);
        QCOMPARE(changed.size(), 30);
        QCOMPARE(world.clock.timerCount(), 0);
    }

    void holdsFortyChannels()
    {
        World world;
        ViewFixture view = show(world);
        QList<int> found;
        for (int channel = 1; channel <= 40; ++channel)
            found += QList<int>(1 + channel * 7 % 13, channel * 4 + 1);
        world.useChannel(149);
        world.find(found);
        QCOMPARE(world.state.bars().size(), 40);
        view.picture(u"channels-forty"_s);
        world.clock.advance(1min);
        world.find({149});
        view.picture(u"channels-one"_s);
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestChannelAnalysisView)
#include "test_channel_analysis_view.moc"
