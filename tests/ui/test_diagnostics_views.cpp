#include "support/test_main.h"
#include "world.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using diagnostics::SpeedTestResult;
using diagnostics::TracerouteService;
using Status = platform::AuthorizationStatus;

namespace {

struct ScanWorld : World {
    ScanWorld()
    {
        useChannel(6);
        state.setShown(true);
        QCoreApplication::processEvents();
    }
    void useChannel(int number)
    {
        simulated.scanner.currentChannel = platform::WiFiChannel {number, {}};
    }
    void find(const QList<int>& found)
    {
        channels.scan();
        std::vector<platform::NearbyNetwork> networks;
        for (const int channel : found)
            networks.push_back({.channel = platform::WiFiChannel {channel, {}}});
        simulated.scanner.finish(networks);
        QCoreApplication::processEvents();
        clock.advance(diagnostics::ChannelAnalysisService::maxScanInterval);
    }

    ui::ChannelAnalysisState& channels = *state.channelAnalysis();
};

} // namespace

class TestDiagnosticsViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void scanNeedsThePermission()
    {
        World world;
        world.permit(Status::Denied);
        ViewFixture view = world.dashboard();
        QCOMPARE(view.texts(u"channel-analysis"_s).last(), u"Open System Settings"_s);
        view.click(u"Open System Settings"_s);
        QCOMPARE(world.simulated.opener.opened, QList<QUrl> {platform::kPrivacySettingsUrl});
        QCOMPARE(view.problems(u"channels-permission"_s), QStringList());
        world.permit(Status::AuthorizedAlways);
        QVERIFY(!view.texts(u"channel-analysis"_s).filter(u"Tap 'Scan'"_s).isEmpty());
    }

    void scanShowsWhatItFound()
    {
        ScanWorld world;
        ViewFixture view = world.show(u"ChannelAnalysisView"_s, world.channels);
        view.click(u"Scan"_s);
        QCOMPARE(world.simulated.scanner.scans, 1);
        QVERIFY(!view.find("text", u"Scan"_s));
        world.find({6, 11, 1, 1, 6, 6});
        QCOMPARE(world.channels.bars(),
            QList<ui::ChartBar>({{u"1"_s, 2, false}, {u"6"_s, 3, true}, {u"11"_s, 1, false}}));
        QCOMPARE(world.channels.chartSummary(),
            u"Channel 1: 2 networks, Channel 6 (current): 3 networks, Channel 11: 1 network"_s);
        QCOMPARE(view.texts().last(), u"Last scan: 30 sec ago"_s);
        QCOMPARE(view.problems(u"channels-typical"_s), QStringList());
        QList<int> found;
        for (int channel = 1; channel <= 40; ++channel)
            found += QList<int>(1 + channel * 7 % 13, channel * 4 + 1);
        world.useChannel(149);
        world.find(found);
        QCOMPARE(world.channels.bars().size(), 40);
        QCOMPARE(view.problems(u"channels-forty"_s), QStringList());
    }

    void scanRecommendsOnlyAnotherChannel()
    {
        ScanWorld world;
        world.find({1, 1, 6});
        QCOMPARE(world.channels.currentChannel(), QVariant(6));
        QVERIFY(!world.channels.recommendedChannel().isValid());
        world.find({1, 6, 6});
        QCOMPARE(world.channels.recommendedChannel(), QVariant(1));
        world.simulated.scanner.currentChannel.reset();
        world.state.setShown(false);
        world.state.setShown(true);
        QCoreApplication::processEvents();
        QVERIFY(!world.channels.currentChannel().isValid());
    }

    void scanIsQuietWhileNothingThatIsShownChanges()
    {
        ScanWorld world;
        world.find({1, 6});
        QSignalSpy bars(&world.channels, &ui::ChannelAnalysisState::barsChanged);
        QSignalSpy changed(&world.channels, &ui::ChannelAnalysisState::changed);
        world.clock.advance(30s); // to the first minute, where only the text changes
        QCOMPARE(changed.size(), 30);
        world.state.setShown(false);
        world.clock.advance(1h);
        QCOMPARE(changed.size(), 30);
        QCOMPARE(bars.size(), 0);
    }

    void speedTest()
    {
        World world;
        ViewFixture view = world.show(u"SpeedTestView"_s, *world.state.speedTest());
        view.click(u"↑↓ Run Speed Test"_s);
        QVERIFY(world.services.speedTestService->isRunning());
        QVERIFY(!view.find("text", u"Retest"_s));
        QCOMPARE(view.problems(u"speed-running"_s), QStringList());
        world.endSpeedTest(2s, 4s);
        QCOMPARE(view.texts().mid(2, 4),
            QStringList({u"Download Speed"_s, u"20.0 Mbps"_s, u"Upload Speed"_s, u"10.0 Mbps"_s}));
        view.click(u"Retest"_s);
        world.endSpeedTest(2s, {});
        QVERIFY(!view.find("text", u"Upload Speed"_s));
        QCOMPARE(world.state.speedTest()->recentTests()[1].summary().section(u',', 1),
            u" download 20.0 Mbps, upload 10.0 Mbps"_s);
        QCOMPARE(view.problems(u"speed-typical"_s), QStringList());
    }

    void speedHistory()
    {
        World world;
        const auto past = [&](int hours) {
            return SpeedTestResult {.id = QUuid::createUuid(),
                .timestamp = world.clock.now() - std::chrono::hours(hours),
                .downloadSpeed = 1234.56 * hours};
        };
        auto& service = *world.services.speedTestService;
        service.setHistory({past(9), past(18), past(27), past(36), past(45), past(54)});
        ViewFixture view = world.show(u"SpeedTestView"_s, *world.state.speedTest());
        QCOMPARE(world.state.speedTest()->recentTests().size(), 5);
        QCOMPARE(view.problems(u"speed-history"_s), QStringList());
        // A window that is not painted meanwhile is not laid out either, until it is resized.
        service.setHistory({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        service.setHistory({past(3)});
        view.root().setWidth(view.root().width() + 20);
        QCOMPARE(view.texts().last(), u"3703.7"_s);
        view.click(u"Clear"_s);
        QVERIFY(service.history().empty());
        QCOMPARE(world.simulated.defaults.text(u"speedTestHistory"_s), u"[]"_s);
        QVERIFY(!view.find("text", u"Recent Tests"_s));
    }

    void lagUnderLoad()
    {
        World world;
        auto& router = *world.services.routerPingService;
        const auto ping = [&](std::chrono::milliseconds roundTrip) {
            router.stop();
            router.start();
            world.clock.advance(roundTrip);
            world.routerConnections.tell(platform::ConnectionState::Ready);
            QCoreApplication::processEvents();
            world.clock.advance(1s);
        };
        auto& state = *world.state.speedTest();
        ViewFixture view = world.show(u"SpeedTestView"_s, state);
        ping(10ms);
        state.runTest();
        ping(35ms);
        world.endSpeedTest(2s, 4s);
        QVERIFY(state.lagMessage().toString().startsWith(
            u"Lag under load: router ping spiked from 10ms to 35ms (3.5x)"_s));
        QVERIFY(view.texts().contains(state.lagMessage().toString()));
        QCOMPARE(view.problems(u"speed-lag"_s), QStringList());
    }
    void tracesWhatIsTyped()
    {
        const QByteArray typed = " a.example ";
        World world;
        ViewFixture view = world.show(u"TracerouteView"_s, *world.state.traceroute());
        view.click(TracerouteService::defaultTarget());
        auto* window = view.root().window();
        QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(window, Qt::Key_Delete);
        for (const char key : typed)
            QTest::keyClick(window, key);
        QTest::keyClick(window, Qt::Key_Return);
        QVERIFY(world.services.tracerouteService->isRunning());
        QCOMPARE(world.services.tracerouteService->targetHost(), QString::fromLatin1(typed));
    }

    void traceroute()
    {
        World world;
        ViewFixture view = world.show(u"TracerouteView"_s, *world.state.traceroute());
        QVERIFY(view.texts().last().startsWith(u"Enter a hostname"_s));
        view.click(u"Run"_s);
        view.click(u"Run"_s); // changes nothing
        world.hop(u"192.0.2.1"_s);
        world.hop({});
        QCOMPARE(view.texts().mid(3),
            QStringList({u"1"_s, u"192.0.2.1"_s, u"12.0 ms"_s, u"2"_s, u"Timeout"_s, u"*"_s}));
        QCOMPARE(view.problems(u"trace-typical"_s), QStringList());
        view.click(u"Stop"_s);
        QVERIFY(!world.services.tracerouteService->isRunning());
        QVERIFY(!view.find("text", u"Stop"_s));
    }

    void aLongTraceStaysWhereItWasScrolledTo()
    {
        World world;
        const QString hostile = QString(300, u'h') + u".<img src='http://127.0.0.1/x'>"_s;
        world.state.traceroute()->setTargetInput(hostile);
        ViewFixture view = world.show(u"TracerouteView"_s, *world.state.traceroute());
        world.state.traceroute()->run();
        for (int hop = 0; hop < 15; ++hop)
            world.hop(hop % 2 ? hostile + u"router"_s : u"2001:db8::1:2:3:4"_s);
        QCOMPARE(view.problems(u"trace-long"_s), QStringList());
        QQuickItem* list = view.find("objectName", u"hops"_s);
        QCOMPARE(list->height(), 200.0);
        list->setProperty("contentY", 90.0);
        world.hop(u"192.0.2.9"_s);
        QCOMPARE(view.problems({}), QStringList());
        QCOMPARE(list->property("contentY"), QVariant(90.0));
        QVERIFY(view.root().implicitWidth() < 1000.0); // the owner sets the width
    }
};

NETVANE_TEST(TestDiagnosticsViews)
#include "test_diagnostics_views.moc"
