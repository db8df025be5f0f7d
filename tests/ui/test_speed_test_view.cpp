#include "diagnostics/speed_test_service.h"
#include "probes/ping_service.h"
#include "support/fake_connections.h"
#include "support/fake_http_transfers.h"
#include "support/fake_user_defaults.h"
#include "support/manual_clock.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/speed_test_state.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using diagnostics::SpeedTestResult;
using test::ViewFixture;

namespace {

struct World {
    test::ManualClock clock;
    test::FakeUserDefaults defaults;
    test::FakeHttpTransfers transfers;
    diagnostics::SpeedTestService service {
        transfers, defaults, clock, QUrl(u"https://speed.test"_s)};
    ui::SpeedTestState state {service, nullptr, clock};

    SpeedTestResult past(std::chrono::seconds ago, std::optional<double> download,
        std::optional<double> upload) const
    {
        return {.id = QUuid::createUuid(),
            .timestamp = clock.now() - ago,
            .downloadSpeed = download,
            .uploadSpeed = upload};
    }
    /// Both halves move 5,000,000 bytes in that time; absent: the half fails.
    void end(
        std::optional<std::chrono::seconds> download, std::optional<std::chrono::seconds> upload)
    {
        for (const auto& half : {download, upload}) {
            clock.advance(half.value_or(1s));
            platform::TransferOutcome outcome {
                .receivedBytes = 5'000'000, .endedAt = clock.monotonicNow()};
            if (!half)
                outcome.errorText = u"no route"_s;
            transfers.end(outcome);
            QCoreApplication::processEvents();
        }
    }
};

ViewFixture show(World& world)
{
    return ViewFixture(
        u"SpeedTestView"_s, {{u"viewState"_s, QVariant::fromValue(&world.state)}}, 388);
}

} // namespace

class TestSpeedTestView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsATestAndShowsItsResult()
    {
        World world;
        ViewFixture view = show(world);
        const QString title = u"Speed Test (Cloudflare)"_s;
        QCOMPARE(view.texts(), QStringList({title, u"Retest"_s, u"↑↓ Run Speed Test"_s}));
        view.picture(u"speed-nothing"_s);
        view.click(view.find("text", u"↑↓ Run Speed Test"_s));
        QVERIFY(world.service.isRunning());
        QCOMPARE(view.texts(), QStringList({title, u"↑↓ Run Speed Test"_s}));
        view.picture(u"speed-running"_s);
        world.end(2s, 4s);
        QCOMPARE(view.texts(),
            QStringList({title, u"Retest"_s, u"Download Speed"_s, u"20.0 Mbps"_s, u"Upload Speed"_s,
                u"10.0 Mbps"_s, u"Recent Tests"_s, u"Clear"_s, u"0 sec ago"_s, u"20.0"_s,
                u"10.0"_s}));

        view.click(view.find("text", u"Retest"_s));
        world.end(2s, {});
        world.clock.advance(3s);
        QCOMPARE(view.texts(),
            QStringList({title, u"Retest"_s, u"Download Speed"_s, u"20.0 Mbps"_s, u"Recent Tests"_s,
                u"Clear"_s, u"3 sec ago"_s, u"20.0"_s, u"6 sec ago"_s, u"20.0"_s, u"10.0"_s}));
        QCOMPARE(world.state.recentTests()[1].summary(),
            u"6 sec ago, download 20.0 Mbps, upload 10.0 Mbps"_s);
        view.picture(u"speed-typical"_s);
        QCOMPARE(view.problems(), QStringList());
    }

    void listsTheFiveNewestAndForgetsAll()
    {
        World world;
        std::vector<SpeedTestResult> history;
        for (int hours = 1; hours <= 7; ++hours)
            history.push_back(world.past(std::chrono::hours(hours * 9), 1234.56 * hours, {}));
        world.service.setHistory(history);
        ViewFixture view = show(world);
        QCOMPARE(world.state.recentTests().size(), 5);
        QCOMPARE(view.texts().mid(5),
            QStringList({u"9 hr ago"_s, u"1234.6"_s, u"18 hr ago"_s, u"2469.1"_s, u"1 day ago"_s,
                u"3703.7"_s, u"1 day ago"_s, u"4938.2"_s, u"1 day ago"_s, u"6172.8"_s}));
        view.picture(u"speed-history"_s);
        view.click(view.find("text", u"Clear"_s));
        QVERIFY(world.service.history().empty());
        QCOMPARE(world.defaults.text(u"speedTestHistory"_s), u"[]"_s);
        QVERIFY(!view.texts().contains(u"Recent Tests"_s));
        QCOMPARE(view.problems(), QStringList());
    }

    /// A window that is not painted meanwhile is not laid out either, until it is resized.
    void comesAndGoesUnpainted()
    {
        World world;
        world.service.setHistory({world.past(1h, 10, {}), world.past(2h, 20, {})});
        ViewFixture view = show(world);
        world.service.setHistory({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        world.service.setHistory({world.past(3h, 30, {})});
        view.root().setWidth(view.root().width() + 20);
        QCOMPARE(view.texts().mid(5), QStringList({u"3 hr ago"_s, u"30.0"_s}));
    }

    void tellsOfLagUnderLoad()
    {
        World world;
        test::FakeConnections connections(world.clock);
        probes::PingService router(u"192.0.2.1"_s, u"router"_s, world.clock, connections);
        ui::SpeedTestState state(world.service, &router, world.clock);
        const auto ping = [&](std::chrono::milliseconds roundTrip) {
            router.stop();
            router.start();
            world.clock.advance(roundTrip);
            connections.tell(platform::ConnectionState::Ready);
            QCoreApplication::processEvents();
            world.clock.advance(1s);
        };
        ViewFixture view(u"SpeedTestView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 388);
        ping(10ms);
        state.runTest();
        ping(35ms);
        world.end(2s, 4s);
        QVERIFY(state.lagMessage().toString().startsWith(
            u"Lag under load: router ping spiked from 10ms to 35ms (3.5x)"_s));
        QVERIFY(view.texts().contains(state.lagMessage().toString()));
        view.picture(u"speed-lag"_s);
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestSpeedTestView)
#include "test_speed_test_view.moc"
