#include "diagnostics/traceroute_service.h"
#include "support/fake_connections.h"
#include "support/manual_clock.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/traceroute_state.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using diagnostics::TracerouteService;
using test::ViewFixture;

namespace {

struct World {
    test::ManualClock clock;
    test::FakeConnections network {clock};
    TracerouteService service {clock, network};
    ui::TracerouteState state {service};

    /// All probes of the next hop are answered after 12 ms, or none is.
    void hop(const QString& address)
    {
        for (int probe = 0; probe < TracerouteService::probesPerHop; ++probe) {
            clock.advance(address.isEmpty() ? TracerouteService::timeoutPerHop : 12ms);
            if (!address.isEmpty())
                network.answer(address);
            QCoreApplication::processEvents();
            clock.advance(TracerouteService::pauseAfterProbe);
        }
    }
};

ViewFixture show(World& world)
{
    return ViewFixture(
        u"TracerouteView"_s, {{u"viewState"_s, QVariant::fromValue(&world.state)}}, 388);
}

const QString kTitle = u"Traceroute"_s;
const QString kHint = u"Enter a hostname or IP address to trace the network path."_s;

} // namespace

class TestTracerouteView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsTellWhoAnswered_data()
    {
        QTest::addColumn<diagnostics::TracerouteHop>("hop");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QString>("summary");
        diagnostics::TracerouteHop hop {
            .id = {}, .hopNumber = 3, .ipAddress = u"10.0.0.1"_s, .hostname = {}, .latency = 12.34};
        QTest::newRow("address") << hop << QStringList {u"3"_s, u"10.0.0.1"_s, {}, u"12.3 ms"_s}
                                 << u"Hop 3, 10.0.0.1, 12.3 ms"_s;
        hop.hostname = u"router.example"_s;
        hop.latency = 0.04;
        QTest::newRow("name") << hop
                              << QStringList {u"3"_s, u"router.example"_s, u"10.0.0.1"_s,
                                     u"0.0 ms"_s}
                              << u"Hop 3, router.example, 10.0.0.1, 0.0 ms"_s;
        hop = {.id = {}, .hopNumber = 30, .ipAddress = diagnostics::kUnansweredAddress};
        QTest::newRow("silence") << hop << QStringList {u"30"_s, u"Timeout"_s, {}, u"*"_s}
                                 << u"Hop 30, Timeout, no answer"_s;
    }
    void rowsTellWhoAnswered()
    {
        QFETCH(diagnostics::TracerouteHop, hop);
        const ui::TracerouteRow row = ui::tracerouteRow(hop);
        QTEST(QStringList({row.number, row.name, row.address.toString(), row.latency}), "texts");
        QTEST(row.summary(), "summary");
        QCOMPARE(row.isAnswered, hop.latency.has_value());
    }

    void tracesWhatIsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("traced");
        const QString defaultTarget = TracerouteService::defaultTarget();
        QTest::newRow("as it comes") << defaultTarget << defaultTarget;
        QTest::newRow("nothing") << QString() << defaultTarget;
        QTest::newRow("spaces") << u" a.example "_s << u" a.example "_s;
    }
    void tracesWhatIsTyped()
    {
        QFETCH(QString, typed);
        World world;
        ViewFixture view = show(world);
        QQuickItem* field = view.find("objectName", u"target"_s);
        QCOMPARE(field->property("text"), QVariant(TracerouteService::defaultTarget()));
        QCOMPARE(field->width(), 120.0);
        view.click(field);
        QTest::keyClick(field->window(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field->window(), Qt::Key_Delete);
        for (const char key : typed.toLatin1())
            QTest::keyClick(field->window(), key);
        QCOMPARE(world.state.targetInput(), typed);
        QTest::keyClick(field->window(), Qt::Key_Return);
        QVERIFY(world.service.isRunning());
        QTEST(world.service.targetHost(), "traced");
        QCOMPARE(view.problems(), QStringList());
    }

    void showsTheWay()
    {
        World world;
        ViewFixture view = show(world);
        QCOMPARE(view.texts(), QStringList({kTitle, u"Run"_s, kHint}));
        view.picture(u"trace-hint"_s);
        view.click(view.find("text", u"Run"_s));
        QCOMPARE(view.texts(), QStringList({kTitle, u"Stop"_s, u"Run"_s}));
        view.click(view.find("text", u"Run"_s)); // changes nothing
        world.hop(u"192.0.2.1"_s);
        world.hop({});
        world.hop(u"198.51.100.7"_s);
        QCOMPARE(view.texts(),
            QStringList({kTitle, u"Stop"_s, u"Run"_s, u"1"_s, u"192.0.2.1"_s, u"12.0 ms"_s, u"2"_s,
                u"Timeout"_s, u"*"_s, u"3"_s, u"198.51.100.7"_s, u"12.0 ms"_s}));
        view.picture(u"trace-typical"_s);
        view.click(view.find("text", u"Stop"_s));
        QVERIFY(!world.service.isRunning());
        QVERIFY(!view.find("text", u"Stop"_s));
        QCOMPARE(view.problems(), QStringList());
    }

    void aLongWayStaysWhereOneLooks()
    {
        World world;
        const QString hostile = QString(300, u'h') + u".<img src='http://127.0.0.1/x'>"_s;
        world.state.setTargetInput(hostile);
        ViewFixture view = show(world);
        world.state.run();
        for (int hop = 0; hop < 15; ++hop)
            world.hop(hop % 2 ? hostile + u"router"_s : u"2001:db8::1:2:3:4"_s);
        view.picture(u"trace-long"_s);
        QQuickItem* list = view.find("objectName", u"hops"_s);
        QCOMPARE(list->height(), 200.0);
        list->setProperty("contentY", 90.0);
        world.hop(u"192.0.2.9"_s);
        view.picture(u"trace-scrolled"_s);
        QCOMPARE(list->property("contentY"), QVariant(90.0));
        QVERIFY(view.root().implicitWidth() < 1000.0); // the owner sets the width
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestTracerouteView)
#include "test_traceroute_view.moc"
