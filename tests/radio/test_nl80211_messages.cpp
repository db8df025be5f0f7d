#include "radio/interface_choice.h"
#include "radio/nl80211_messages.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

#include <linux/nl80211.h>

using namespace netvane::base;
using namespace netvane::platform;
using namespace netvane::radio;
using namespace netvane::test;
using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray station(const QByteArray& info)
{
    return attribute(NL80211_ATTR_STA_INFO, info);
}

QByteArray flags(quint32 mask, quint32 set)
{
    return attribute(NL80211_STA_INFO_STA_FLAGS, raw(mask) + raw(set));
}

const QByteArray kSignal61 = attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-61)));
const QByteArray kAverage63 = attribute(NL80211_STA_INFO_SIGNAL_AVG, raw(qint8(-63)));

} // namespace

class TestNl80211Messages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void interfaces()
    {
        const auto whole = parseInterface(bytesOf(attribute(NL80211_ATTR_IFINDEX, raw(quint32(3)))
            + attribute(NL80211_ATTR_IFNAME, "wlan0\0junk"_ba)
            + attribute(NL80211_ATTR_IFTYPE, raw(quint32(2))) + attribute(9999, "unknown"_ba)
            + attribute(NL80211_ATTR_SSID, QByteArray("a\0b", 3))
            + attribute(NL80211_ATTR_WIPHY_FREQ, raw(quint32(2437)))));
        const InterfaceRecord expected {
            3, "wlan0"_ba, NL80211_IFTYPE_STATION, QByteArray("a\0b", 3), 2437};
        QCOMPARE(whole, expected);

        const auto oddSizes
            = parseInterface(bytesOf(attribute(NL80211_ATTR_IFINDEX, raw(quint16(3)))
                + attribute(NL80211_ATTR_IFTYPE, raw(quint64(2)))
                + attribute(NL80211_ATTR_IFNAME, "w"_ba) + attribute(NL80211_ATTR_WIPHY_FREQ, {})));
        QCOMPARE(oddSizes, (InterfaceRecord {.name = "w"_ba}));
    }

    void stations_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<int>("signal"); // 0: absent
        QTest::addColumn<double>("mbps"); // -1: absent
        const auto row = [](const char* name, const QByteArray& info, int dbm, double mbps = -1) {
            QTest::newRow(name) << station(info) << dbm << mbps;
        };
        row("nothing", {}, 0);
        row("signal first", kAverage63 + kSignal61, -61);
        row("odd signal", attribute(NL80211_STA_INFO_SIGNAL, raw(qint32(-61))) + kAverage63, -63);
        row("claims too much", attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-61)), 200), 0);
        const QByteArray narrow = attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(8667)));
        row("narrow rate", attribute(NL80211_STA_INFO_TX_BITRATE, narrow), 0, 866.7);
        const QByteArray wide = attribute(NL80211_RATE_INFO_BITRATE32, raw(quint32(115296)));
        row("wide rate", attribute(NL80211_STA_INFO_TX_BITRATE, narrow + wide), 0, 11529.6);
    }

    void stations()
    {
        QFETCH(QByteArray, message);
        const auto record = parseStation(bytesOf(message));
        QTEST(record.signalDbm.value_or(0), "signal");
        QTEST(record.transmitRateMbps.value_or(-1.0), "mbps");
    }

    void surveyOfTheRightChannel()
    {
        const auto entry = [](quint32 mhz, int dbm, bool inUse) {
            return parseSurvey(bytesOf(attribute(NL80211_ATTR_SURVEY_INFO,
                attribute(NL80211_SURVEY_INFO_FREQUENCY, raw(mhz))
                    + attribute(NL80211_SURVEY_INFO_NOISE, raw(qint8(dbm)))
                    + attribute(NL80211_SURVEY_INFO_TIME, raw(quint64(mhz)))
                    + attribute(NL80211_SURVEY_INFO_TIME_BUSY, raw(quint32(1)))
                    + (inUse ? attribute(NL80211_SURVEY_INFO_IN_USE, {}) : QByteArray()))));
        };
        InterfaceRecord interface;
        interface.frequencyMhz = 2437;
        std::vector survey = {entry(2412, -80, false), entry(2437, -92, false)};
        QCOMPARE(linkReading(interface, {StationRecord {}}, survey, {}).noiseDbm, -92);
        QVERIFY(!linkReading({}, {}, survey, {}).noiseDbm);
        survey.push_back(entry(5180, -95, true));
        const auto inUse = linkReading(interface, {StationRecord {}}, survey, {});
        QCOMPARE(inUse.noiseDbm, -95);
        QCOMPARE(inUse.counters, LinkCounters {.channelActiveMs = 5180}); // the other's size is odd
    }

    /// Each value stands in one of several messages about the access point, or in none.
    void countersOfAllMessages()
    {
        const auto count = [](int number, quint32 value) { return attribute(number, raw(value)); };
        const auto slow = attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(60)));
        const auto mac = attribute(NL80211_ATTR_MAC, QByteArray("\2\0\0\0\1\0", 6));
        const std::vector stations = {parseStation(bytesOf(attribute(NL80211_ATTR_MAC, "short"_ba)
                                          + station(count(NL80211_STA_INFO_TX_PACKETS, 100)
                                              + count(NL80211_STA_INFO_TX_RETRIES, 20)))),
            parseStation(bytesOf(mac
                + station(count(NL80211_STA_INFO_TX_FAILED, 3)
                    + count(NL80211_STA_INFO_BEACON_LOSS, 4)
                    + attribute(NL80211_STA_INFO_RX_BITRATE, slow))))};
        const auto reading = linkReading({}, stations, {}, {});
        QCOMPARE(reading.counters,
            (LinkCounters {.sentPackets = 100, .retries = 20, .failed = 3, .beaconsLost = 4}));
        QCOMPARE(reading.bssid, u"02:00:00:00:01:00"_s);
        QCOMPARE(reading.receiveRateMbps, 6.0);
        QCOMPARE(parsePowerSave(bytesOf(count(NL80211_ATTR_PS_STATE, NL80211_PS_ENABLED))), true);
        QVERIFY(!parsePowerSave(bytesOf(attribute(NL80211_ATTR_PS_STATE, "\1"_ba))));
    }

    void accessPointIsToldFromOtherPeers()
    {
        const auto peer
            = [](const QByteArray& info) { return parseStation(bytesOf(station(info))); };
        constexpr quint32 kAssociated = 1U << NL80211_STA_FLAG_ASSOCIATED;
        constexpr quint32 kDirect = 1U << NL80211_STA_FLAG_TDLS_PEER;
        const auto tdls = peer(flags(kDirect | kAssociated, kDirect | kAssociated)
            + attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-20))));
        const auto mine = peer(flags(kAssociated, kAssociated) + kSignal61);
        QCOMPARE(linkReading({}, {tdls, mine}, {}, {}).signalDbm, -61);
        QVERIFY(mine.associated == true && !mine.authorized);
        // Without a link there is no channel either.
        const auto none = linkReading({.name = "wlan0"_ba, .frequencyMhz = 5180}, {tdls}, {}, {});
        QCOMPARE(none, LinkReading {.interfaceName = u"wlan0"_s});
    }

    /// The interface has the name of a network that it only asks, or that does not let it in.
    void joiningIsNoLink()
    {
        const InterfaceRecord interface {
            .ssid = "Home"_ba, .frequencyMhz = 2437
        };
        const auto peer = [](std::optional<bool> associated, std::optional<bool> authorized) {
            return StationRecord {
                .associated = associated, .authorized = authorized, .signalDbm = -48};
        };
        const BssRecord heard {.ssid = "Home"_ba};
        const BssRecord joined {.ssid = "Home"_ba, .associated = true};
        const std::tuple<std::vector<StationRecord>, std::vector<BssRecord>, bool> rows[] = {
            {{}, {heard}, false}, {{peer(false, false)}, {heard}, false},
            {{peer(true, false)}, {joined}, false}, // a wrong password
            {{peer(true, true)}, {}, true}, {{peer({}, {})}, {}, true}, // a driver without flags
            {{}, {heard, joined}, true}, // a driver without stations
        };
        for (const auto& [stations, networks, isLink] : rows) {
            const auto reading = linkReading(interface, stations, {}, networks);
            QCOMPARE(reading.ssid, isLink ? std::optional(u"Home"_s) : std::nullopt);
            QCOMPARE(reading.joiningSsid, isLink ? std::nullopt : std::optional(u"Home"_s));
            QCOMPARE(
                reading.signalDbm, isLink && !stations.empty() ? std::optional(-48) : std::nullopt);
            QCOMPARE(reading.channel.has_value(), isLink);
        }
        QVERIFY(needsScanTable(interface, {}) && !needsScanTable(interface, {peer(true, false)}));
    }

    void interfacesInTheOrderOfUse()
    {
        // Interface, destination, gateway, flags, two counters, metric, mask.
        const QByteArray routes = "wlan1 00000000 0132A8C0 0003 0 0 600 00000000\n"
                                  "wlan1 00000000 0132A8C0 0003 0 0 90 00000000\n"
                                  "wlan1 00000000 0132A8C0 0003 0 0 9 00000080\n"
                                  "wlan2 0032A8C0 00000000 0001 0 0 5 00FFFFFF\nwlan2"_ba;
        QCOMPARE(defaultRouteMetric(routes, "wlan1"_ba), 90U);
        QVERIFY(!defaultRouteMetric(routes, "wlan2"_ba));

        const auto named = [](const char* name) { return InterfaceRecord {.name = name}; };
        std::vector<RankedInterface> interfaces = {{.interface = named("off"), .isKept = true},
            {.interface = named("on"), .isOn = true},
            {.interface = named("signs in"), .isAssociated = true},
            {.interface = named("joined"), .hasLink = true},
            {.interface = named("joined too"), .hasLink = true},
            {.interface = named("600"), .hasLink = true, .routeMetric = 600},
            {.interface = named("90"), .hasLink = true, .routeMetric = 90},
            {.interface = named("kept"), .isKept = true, .hasLink = true}};
        sortByUse(interfaces);
        QByteArrayList order;
        for (const auto& ranked : interfaces)
            order.append(*ranked.interface.name);
        QCOMPARE(order.join(','), "kept,90,600,joined,joined too,signs in,on,off"_ba);
    }

    void networkFillsWhatTheInterfaceLacks()
    {
        const auto bss = [](const QByteArray& elements, bool associated) {
            return parseBss(bytesOf(attribute(NL80211_ATTR_BSS,
                attribute(NL80211_BSS_FREQUENCY, raw(quint32(5180)))
                    + attribute(NL80211_BSS_INFORMATION_ELEMENTS, elements)
                    + (associated ? attribute(
                           NL80211_BSS_STATUS, raw(quint32(NL80211_BSS_STATUS_ASSOCIATED)))
                                  : QByteArray()))));
        };
        const std::vector networks = {bss("\0\5Other"_ba.prepend(QByteArray()), false),
            bss(QByteArray("\1\2ab\0\4Mine\3", 11), true)};
        const auto reading = linkReading({}, {StationRecord {}}, {}, networks);
        QCOMPARE(reading.ssid, u"Mine"_s);
        QCOMPARE(reading.band, ChannelBand::FiveGHz);
        QCOMPARE(reading.channel, (WiFiChannel {36, ChannelBand::FiveGHz}));
        QVERIFY(needsScanTable({.ssid = "x"_ba}, {StationRecord {}}));
        QVERIFY(!needsScanTable({}, {}));
    }

    void channels()
    {
        const std::map<ChannelBand, std::map<quint32, int>> expected {// number 0: no channel
            {ChannelBand::TwoGHz,
                {{2407, 0}, {2412, 1}, {2472, 13}, {2478, 0}, {2484, 14}, {2489, 0}}},
            {ChannelBand::FiveGHz,
                {{4905, 0}, {4920, 184}, {4980, 196}, {5000, 0}, {5180, 36}, {5885, 177}}},
            {ChannelBand::SixGHz,
                {{5930, 0}, {5935, 2}, {5950, 0}, {5955, 1}, {7115, 233}, {7125, 0}}},
            {ChannelBand::Unknown, {{0, 0}, {920, 0}, {60480, 0}, {4294967295U, 0}}}};
        for (const auto& [band, numbers] : expected) {
            for (const auto& [mhz, number] : numbers)
                QCOMPARE(channelOf(mhz),
                    number == 0 ? std::nullopt : std::optional(WiFiChannel {number, band}));
        }
    }
};

NETVANE_TEST(TestNl80211Messages)
#include "test_nl80211_messages.moc"
