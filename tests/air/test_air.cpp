#include "air/channel_advice.h"
#include "air/heard_networks.h"
#include "air/roaming.h"
#include "support/test_main.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace netvane;
using namespace netvane::air;
using namespace netvane::platform;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

AirNetwork network(const QJsonObject& told)
{
    const auto number = [&](const QString& name) { return std::uint32_t(told[name].toInt()); };
    AirSpan span {.primaryMhz = number(u"primary"_s), .widthMhz = told[u"width"_s].toInt()};
    if (told.contains(u"centre"_s))
        span.centreMhz = number(u"centre"_s);
    if (told.contains(u"second"_s))
        span.secondCentreMhz = number(u"second"_s);
    AirNetwork made {.bssid = told[u"bssid"_s].toString(),
        .span = span,
        .signalDbm = told[u"signal"_s].toInt(),
        .age = std::chrono::milliseconds(told[u"age"_s].toInt()),
        .isOurs = told[u"ours"_s].toBool()};
    if (told.contains(u"load"_s))
        made.utilization = told[u"load"_s].toDouble();
    return made;
}

AirChannel channel(const QJsonObject& told)
{
    AirChannel made {.frequencyMhz = std::uint32_t(told[u"frequency"_s].toInt()),
        .isAllowed = told[u"allowed"_s].toBool(),
        .isPassive = told[u"passive"_s].toBool(),
        .needsRadarCheck = told[u"radar"_s].toBool()};
    if (told.contains(u"busy"_s))
        made.survey
            = {.activeMs = 1000, .busyMs = std::uint64_t(told[u"busy"_s].toDouble() * 1000 + 0.5)};
    return made;
}

const AirSecurity kKey {.wpa2 = true};

AirNetwork accessPoint(
    const QString& bssid, std::uint32_t mhz, int dbm, const AirSecurity& security)
{
    return {.ssid = u"Home"_s,
        .bssid = bssid,
        .span = AirSpan {.primaryMhz = mhz},
        .signalDbm = dbm,
        .age = 1s,
        .security = security};
}

} // namespace

class TestAir : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The same rule in Python gives the same advice.
    void agreesWithTheReference()
    {
        QProcess reference;
        reference.start(u"python3"_s, {QStringLiteral(NETVANE_ADVICE)});
        QVERIFY2(reference.waitForStarted(), "there is no python3");
        QVERIFY(reference.waitForFinished());
        const auto tables = QJsonDocument::fromJson(reference.readAllStandardOutput()).array();
        QCOMPARE(tables.size(), 30);
        for (const auto& table : tables) {
            Surroundings around {.wasScanned = table[u"scanned"].toBool()};
            around.change.transmit = table[u"own"].toDouble();
            for (const auto& told : table[u"networks"].toArray())
                around.networks.push_back(network(told.toObject()));
            for (const auto& told : table[u"channels"].toArray())
                around.channels.push_back(channel(told.toObject()));
            for (int band = 0; band < 3; ++band) {
                const auto advice = adviseChannel(kBands[band], around);
                const auto wanted = table[u"advice"][band];
                const auto where = u"seed %1, %2: %3"_s.arg(table[u"seed"].toInt())
                                       .arg(bandName(advice.band), sentence(advice));
                QVERIFY2(int(advice.kind) == wanted[u"kind"].toInt(), qPrintable(where));
                QVERIFY2(advice.airtime == wanted[u"airtime"].toInt(), qPrintable(where));
                const int best = advice.best ? advice.best->number : 0;
                QVERIFY2(best == wanted[u"best"].toInt(), qPrintable(where));
                QVERIFY2(advice.bestAirtime == wanted[u"bestAirtime"].toInt(), qPrintable(where));
                QVERIFY2(advice.hasRadar == wanted[u"radar"].toBool(), qPrintable(where));
            }
        }
    }

    void findsAMuchBetterAccessPoint_data()
    {
        QTest::addColumn<int>("ours");
        QTest::addColumn<std::uint32_t>("mhz");
        QTest::addColumn<int>("other");
        QTest::addColumn<std::chrono::milliseconds>("age");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("stuck") << -80 << 5500U << -55 << 1000ms << true;
        QTest::newRow("by ten exactly") << -73 << 5500U << -63 << 120'000ms << true;
        QTest::newRow("ours is good") << -72 << 5500U << -30 << 1000ms << false;
        QTest::newRow("not much better") << -80 << 5500U << -71 << 1000ms << false;
        QTest::newRow("an old table") << -80 << 5500U << -55 << 120'001ms << false;
        QTest::newRow("2.4 GHz is louder") << -80 << 2437U << -65 << 1000ms << false;
        QTest::newRow("2.4 GHz, and more") << -80 << 2437U << -64 << 1000ms << true;
    }

    void findsAMuchBetterAccessPoint()
    {
        QFETCH(int, ours);
        QFETCH(std::uint32_t, mhz);
        QFETCH(int, other);
        QFETCH(std::chrono::milliseconds, age);
        QFETCH(bool, isFound);
        const QString bssid = u"02:00:00:00:01:00"_s;
        std::vector<AirNetwork> networks {accessPoint(bssid, 5180, ours, kKey),
            accessPoint(u"02:00:00:00:02:00"_s, mhz, other, {.wpa3 = true}),
            accessPoint(u"02:00:00:00:03:00"_s, 5500, -20, {}), // anybody may call theirs so
            accessPoint(u"02:00:00:00:04:00"_s, 5500, -20, {.wpa2 = true, .enterprise = true})};
        networks[0].isOurs = true;
        networks[1].age = age;
        const AirLink link {.bssid = bssid, .averageSignalDbm = ours};
        const auto better = betterAccessPoint(link, networks);
        QCOMPARE(better.has_value(), isFound);
        if (isFound) {
            QCOMPARE(better->network, networks[1]);
            QVERIFY(sentence(*better).contains(u"%1 dBm (02:00:00:00:02:00"_s.arg(other)));
        }
    }

    void remembersWhatTheKernelForgets()
    {
        auto ours = accessPoint(u"02:00:00:00:01:00"_s, 5180, -50, kKey);
        ours.isOurs = true;
        auto hidden = accessPoint(u"02:00:00:00:02:00"_s, 2412, -60, kKey);
        HeardNetworks heard;
        heard.add({.at = {}, .networks = {ours, hidden}});
        hidden.ssid.reset();
        hidden.span->primaryMhz = 2437;
        ours.isOurs = false; // the link has ended
        heard.add({.at = std::chrono::steady_clock::time_point(5s), .networks = {ours, hidden}});
        QCOMPARE(heard.networks().size(), 2U);
        QVERIFY(!heard.networks()[0].isOurs);
        QCOMPARE(heard.networks()[1].ssid, u"Home"_s);
        QCOMPARE(heard.networks()[1].span->primaryMhz, 2437U);
        heard.add({.at = std::chrono::steady_clock::time_point(125s)});
        QCOMPARE(heard.networks()[1].age, std::optional(121'000ms));
        QVERIFY(!isFresh(heard.networks()[1]));
        heard.add({.at = std::chrono::steady_clock::time_point(700s)});
        QVERIFY(heard.networks().empty());
    }
};

NETVANE_TEST(TestAir)
#include "test_air.moc"
