#include "support/dashboard_world.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/network_info_state.h"
#include "ui/state/signal_accent.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using platform::ChannelBand;
using test::DashboardWorld;
using test::ViewFixture;

namespace {

const QString kNoName = u"Connected (Location permission needed for network name)"_s;

QStringList texts(const QStringList& connection, const QString& vpn = u"No VPN"_s)
{
    return QStringList({u"Netvane"_s, u"Network Diagnostics"_s}) + connection + QStringList(vpn);
}

} // namespace

class TestNetworkInfoView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signalColours_data()
    {
        QTest::addColumn<int>("signalDbm");
        QTest::addColumn<ui::Accent>("accent");
        QTest::newRow("good") << -69 << ui::Accent::Green;
        QTest::newRow("fair") << -70 << ui::Accent::Orange;
        QTest::newRow("still fair") << -79 << ui::Accent::Orange;
        QTest::newRow("poor") << -80 << ui::Accent::Red;
    }
    void signalColours()
    {
        QFETCH(int, signalDbm);
        QTEST(ui::signalAccent(signalDbm), "accent");
    }

    void showsTheConnection()
    {
        DashboardWorld world;
        ui::NetworkInfoState state(world.readings);
        ViewFixture view(
            u"NetworkInfoView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QCOMPARE(view.texts(), texts({u"Not Connected"_s}));
        view.picture(u"network-info-nothing"_s);

        world.link({{.ssid = u"Home"_s, .signalDbm = -58, .band = ChannelBand::SixGHz}});
        QCOMPARE(view.texts(), texts({u"Home"_s, u"6 GHz (WiFi 6E)"_s, u"-58 dBm"_s}));
        view.picture(u"network-info-typical"_s);
        world.link({{.signalDbm = -81}});
        QCOMPARE(view.texts(), texts({kNoName, u"Unknown"_s, u"-81 dBm"_s}));
        world.link({{.ssid = u"Home"_s}});
        QCOMPARE(view.texts(), texts({u"Not Connected"_s}));

        const QString hostile = u"\u202e<img src='http://127.0.0.1/x'>"_s
            + u"\U0001F468\u200d\U0001F469"_s.repeated(32);
        world.link({{.ssid = hostile, .signalDbm = -75, .band = ChannelBand::TwoGHz}});
        world.configuration.interfaces = {u"ipsec0"_s};
        world.readings.refresh();
        QCOMPARE(view.texts(), texts({hostile, u"2.4 GHz"_s, u"-75 dBm"_s}, u"VPN active"_s));
        view.picture(u"network-info-hostile"_s);
        QCOMPARE(view.problems(), QStringList());
    }

    void theGearAsksForTheSettings()
    {
        DashboardWorld world;
        ui::NetworkInfoState state(world.readings);
        QSignalSpy requests(&state, &ui::NetworkInfoState::settingsRequested);
        ViewFixture view(
            u"NetworkInfoView"_s, {{u"viewState"_s, QVariant::fromValue(&state)}}, 420);
        QQuickItem* gear = view.find("text", u"Settings"_s);
        view.click(gear);
        QCOMPARE(requests.size(), 1);
        gear->forceActiveFocus();
        QTest::keyClick(gear->window(), Qt::Key_Return);
        QTest::keyClick(gear->window(), Qt::Key_Space);
        QCOMPARE(requests.size(), 3);
    }
};

NETVANE_TEST(TestNetworkInfoView)
#include "test_network_info_view.moc"
