#include "support/test_main.h"
#include "ui/air/air_state.h"
#include "world.h"

#include <QTest>

using namespace netvane;
using namespace netvane::test;
using platform::AirNetwork;

namespace {

const QString kHostile = u"<img src='http://127.0.0.1/x'>"_s.leftJustified(32, u'W');

AirNetwork network(const QString& name, int last, std::uint32_t mhz, int dbm)
{
    return {.ssid = name,
        .bssid = QString::asprintf("02:00:00:00:%02x:00", last),
        .span = platform::AirSpan {.primaryMhz = mhz, .centreMhz = mhz, .widthMhz = 20},
        .signalDbm = dbm,
        .age = 1s,
        .utilization = last / 20.0,
        .security = platform::AirSecurity {.wpa2 = true}};
}

/// A weak link on a busy channel; a quiet channel and a strong access point are near.
platform::AirReading weakLink()
{
    platform::AirReading reading {.at = std::chrono::steady_clock::time_point(100s),
        .adapters = {{.name = u"wlan0"_s, .isUsed = true, .firmware = kHostile},
            {.name = u"wlan1"_s, .driver = kHostile}},
        .networks = {network(kHostile, 1, 2412, -80), network(kHostile, 2, 2462, -50),
            network(u"Other"_s, 18, 2412, -60), network(u"six"_s, 4, 5955, -90)}};
    reading.networks[0].isOurs = true;
    for (const std::uint32_t mhz : {2412, 2437, 2462})
        reading.channels.push_back({.frequencyMhz = mhz});
    reading.link = platform::AirLink {.ssid = kHostile,
        .bssid = reading.networks[0].bssid,
        .accessPoint = reading.networks[0],
        .signalDbm = -80};
    return reading;
}

struct Window {
    World world;
    ui::AirState state {world.services};
    ViewFixture view;

    explicit Window(const base::Result<platform::AirReading>& reading)
        : view([&] {
            world.simulated.air.reading = reading;
            return world.show(u"AirView"_s, state, 900);
        }())
    {
        settle();
    }
    void settle()
    {
        world.simulated.queues.utility.waitForDone();
        QCoreApplication::processEvents();
    }
    void show(int page)
    {
        view.root().setProperty("page", page);
        settle();
    }
    QStringList names()
    {
        QStringList all;
        for (const auto& row : state.table()->property("rows").value<QList<ui::NetworkRow>>())
            all.append(row.cells.first());
        return all;
    }
};

} // namespace

class TestAirView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pagesFit()
    {
        Window window(weakLink());
        for (const int width : {900, 640}) {
            window.view.root().window()->resize(width, 500);
            for (int page = 0; page < 4; ++page) {
                window.show(page);
                QCOMPARE(window.view.problems(), QStringList());
            }
        }
        QVERIFY(
            window.view.texts().filter(u"stays with a weak access point: -80 dBm"_s).size() == 1);
        window.show(0);
        QCOMPARE(window.view.texts().filter(u"Channel 6 is quieter"_s).size(), 1);
        QVERIFY(window.view.shows(u"6 GHz"_s));
    }

    void readsOnlyWhileShown()
    {
        Window window(weakLink());
        auto& reads = window.world.simulated.air.reads;
        QCOMPARE(reads, 1);
        window.world.clock.advance(3 * ui::AirState::readInterval); // while the first one waits
        window.settle();
        QCOMPARE(reads, 2);
        window.state.setShown(false);
        window.world.clock.advance(60s);
        window.settle();
        QCOMPARE(reads, 2);
        QCOMPARE(window.world.simulated.scanner.scans, 0);
        window.state.scan();
        QCOMPARE(window.world.simulated.scanner.scans, 1);
        window.state.setAdapter(u"wlan1"_s);
        window.settle();
        QCOMPARE(window.world.simulated.air.lastName, u"wlan1"_s);
    }

    void sortsAndFilters()
    {
        Window window(weakLink());
        window.show(1);
        auto& table = *window.state.table();
        QCOMPARE(window.names(), (QStringList {kHostile, u"Other"_s, kHostile, u"six"_s}));
        table.sortBy(ui::NetworkTable::Load);
        QCOMPARE(window.names().first(), u"Other"_s);
        table.sortBy(ui::NetworkTable::Channel);
        QCOMPARE(window.names().constLast(), u"six"_s);
        table.sortBy(ui::NetworkTable::Channel);
        QCOMPARE(window.names().first(), u"six"_s);
        table.setFilter(u"OTHER"_s);
        QCOMPARE(window.names(), QStringList {u"Other"_s});
        QVERIFY(window.view.shows(u"1 network"_s));
    }

    void saysWhyThereIsNothing()
    {
        Window silent(platform::AirReading {});
        QCOMPARE(silent.view.texts().filter(u"Nothing was heard yet"_s).size(), 1);
        Window none(base::Failure {base::FailureKind::NotFound, u"There is no Wi-Fi adapter"_s});
        QVERIFY(none.view.shows(u"There is no Wi-Fi adapter."_s));
        for (int page = 0; page < 4; ++page) {
            none.show(page);
            QCOMPARE(none.view.problems(), QStringList());
        }
    }
};

NETVANE_TEST(TestAirView)
#include "test_air_view.moc"
