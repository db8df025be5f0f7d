#include "support/test_main.h"
#include "world.h"

#include <QTest>

using namespace netvane;
using namespace netvane::test;
using diagnostics::TracerouteService;

class TestDiagnosticsViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void scan()
    {
        World world;
        world.simulated.scanner.currentChannel = platform::WiFiChannel {6, {}};
        world.state.setShown(true);
        QCoreApplication::processEvents();
        auto& state = *world.state.channelAnalysis();
        ViewFixture view = world.show(u"ChannelAnalysisView"_s, state);
        const auto find = [&](const QList<int>& found) {
            view.click(u"Scan"_s);
            QVERIFY(!view.shows(u"Scan"_s));
            std::vector<platform::NearbyNetwork> networks;
            for (const int channel : found)
                networks.push_back({.channel = platform::WiFiChannel {channel, {}}});
            world.simulated.scanner.finish(networks);
            QCoreApplication::processEvents();
            world.clock.advance(diagnostics::ChannelAnalysisService::maxScanInterval);
        };
        find({6, 11, 1, 1, 6, 6});
        QCOMPARE(state.chartSummary(),
            u"Channel 1: 2 networks, Channel 6 (current): 3 networks, Channel 11: 1 network"_s);
        QCOMPARE(view.texts().last(), u"Last scan: 30 sec ago"_s);
        find({1, 1, 6});
        QVERIFY(!state.recommendedChannel().isValid()); // it is the current one
        find({1, 6, 6});
        QCOMPARE(state.recommendedChannel(), QVariant(1));
        QList<int> many;
        for (int channel = 1; channel <= 40; ++channel)
            many += QList<int>(1 + channel * 7 % 13, channel * 4 + 1);
        find(many);
        QCOMPARE(state.bars().size(), 40);
        QCOMPARE(view.problems(), QStringList());
    }

    void speedTest()
    {
        World world;
        auto& state = *world.state.speedTest();
        ViewFixture view = world.show(u"SpeedTestView"_s, state);
        const auto end = [&](std::chrono::seconds duration, std::optional<QString> error = {}) {
            world.clock.advance(duration);
            world.simulated.http.answer({.receivedBytes = 5'000'000,
                .endedAt = world.clock.monotonicNow(),
                .errorText = error});
            QCoreApplication::processEvents();
        };
        view.click(u"↑↓ Run Speed Test"_s);
        end(2s);
        end(4s);
        QCOMPARE(view.texts().mid(2, 4),
            QStringList({u"Download Speed"_s, u"20.0 Mbps"_s, u"Upload Speed"_s, u"10.0 Mbps"_s}));
        view.click(u"Retest"_s);
        end(2s);
        end(1s, u"no route"_s);
        QVERIFY(!view.shows(u"Upload Speed"_s) && view.shows(u"The upload failed: no route"_s));
        world.services.routerPingService->start();
        world.ping(10ms, {});
        state.runTest();
        world.ping(35ms, {});
        end(2s);
        end(4s);
        QVERIFY(state.lagMessage().toString().startsWith(
            u"Lag under load: router ping spiked from 10ms to 35ms (3.5x)"_s));
        QVERIFY(view.shows(state.lagMessage().toString()));
        QCOMPARE(view.problems(), QStringList());
    }

    void speedHistory()
    {
        World world;
        const auto past = [&](int hours) {
            return diagnostics::SpeedTestResult {.id = QUuid::createUuid(),
                .timestamp = world.clock.now() - std::chrono::hours(hours),
                .downloadSpeed = 1234.56 * hours};
        };
        auto& service = *world.services.speedTestService;
        service.setHistory({past(9), past(18), past(27), past(36), past(45), past(54)});
        ViewFixture view = world.show(u"SpeedTestView"_s, *world.state.speedTest());
        QCOMPARE(world.state.speedTest()->recentTests().size(), 5);
        QCOMPARE(view.problems(), QStringList());
        // A window that is not painted meanwhile is not laid out either, until it is resized.
        service.setHistory({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        service.setHistory({past(3), {.timestamp = world.clock.now()}});
        view.root().setWidth(view.root().width() + 20);
        QCOMPARE(view.texts().mid(view.texts().size() - 3, 3).first(), u"3703.7"_s);
        QCOMPARE(view.texts().last(), u"failed"_s);
        view.click(u"Clear"_s);
        QCOMPARE(world.simulated.defaults.text(u"speedTestHistory"_s), u"[]"_s);
        QVERIFY(!view.shows(u"Recent Tests"_s));
    }

    void tracesWhatIsTypedElseTheDefault()
    {
        World world;
        ViewFixture view = world.show(u"TracerouteView"_s, *world.state.traceroute());
        auto& service = *world.services.tracerouteService;
        for (const QString& typed : {u" a.example "_s, QString()}) {
            view.click(world.state.traceroute()->targetInput());
            auto* window = view.root().window();
            QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClick(window, Qt::Key_Delete);
            for (const char key : typed.toLatin1())
                QTest::keyClick(window, key);
            QTest::keyClick(window, Qt::Key_Return);
            QVERIFY(service.isRunning());
            QCOMPARE(
                service.targetHost(), typed.isEmpty() ? TracerouteService::defaultTarget() : typed);
            view.click(u"Stop"_s);
            QVERIFY(!service.isRunning() && !view.shows(u"Stop"_s));
        }
        view.click(u"Run"_s);
        world.hop(u"192.0.2.1"_s);
        world.hop({});
        QCOMPARE(view.texts().mid(4),
            QStringList({u"1"_s, u"192.0.2.1"_s, u"12.0 ms"_s, u"2"_s, u"Timeout"_s, u"*"_s}));
        view.click(u"Stop"_s);
        service.startTrace(u"localhost"_s);
        world.clock.advance(0ms);
        QVERIFY(!view.texts().filter(u"Nothing to trace: "_s).isEmpty());
        QCOMPARE(view.problems(), QStringList());
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
        QCOMPARE(view.problems(), QStringList());
        QQuickItem* list = view.find("objectName", u"hops"_s);
        QCOMPARE(list->height(), 200.0);
        list->setProperty("contentY", 90.0);
        world.hop(u"192.0.2.9"_s);
        QCOMPARE(view.problems(), QStringList());
        QCOMPARE(list->property("contentY"), QVariant(90.0));
        QVERIFY(view.root().implicitWidth() < 1000.0); // the owner sets the width
    }
};

NETVANE_TEST(TestDiagnosticsViews)
#include "test_diagnostics_views.moc"
