#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/recommendations_state.h"

#include <QTest>

using namespace netvane;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using test::DashboardWorld;
using test::ViewFixture;

class TestRecommendationsView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void advisesAsLongAsThereIsCause()
    {
        DashboardWorld world;
        ui::RecommendationsState state(world.readings);
        ViewFixture view(
            u"RecommendationsView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QVERIFY(!view.root().isVisible());

        world.link({{.signalDbm = -80, .band = platform::ChannelBand::TwoGHz}});
        world.router.start();
        world.internet.start();
        world.ping(10ms, 10ms);
        world.ping(10ms, 500ms);
        QCOMPARE(view.texts().size(), 3);
        world.ping(100ms, 10ms);
        QCOMPARE(view.texts(),
            QStringList({u"Recommendations"_s,
                u"Using an older Wi-Fi standard (Wi-Fi 4) - try moving to 5 GHz for better speeds."_s,
                u"Signal strength is very low - move closer to the router or adjust antenna orientation."_s,
                u"High jitter detected - check your router and network congestion."_s}));
        view.picture(u"recommendations"_s);
        world.link({});
        for (int i = 0; i < 10; ++i)
            world.ping(10ms, 10ms);
        QVERIFY(state.recommendations().isEmpty() && !view.root().isVisible());
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestRecommendationsView)
#include "test_recommendations_view.moc"
