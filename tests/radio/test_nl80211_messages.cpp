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

QByteArray rate(const QByteArray& values)
{
    return station(attribute(NL80211_STA_INFO_TX_BITRATE, values));
}

QByteArray flags(quint32 mask, quint32 set)
{
    return attribute(NL80211_STA_INFO_STA_FLAGS, raw(mask) + raw(set));
}

const QByteArray kSignal61 = attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-61)));
const QByteArray kAverage63 = attribute(NL80211_STA_INFO_SIGNAL_AVG, raw(qint8(-63)));
const QByteArray kBeacon65 = attribute(NL80211_STA_INFO_BEACON_SIGNAL_AVG, raw(qint8(-65)));

} // namespace

class TestNl80211Messages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void interfaceWhole()
    {
        const auto record = parseInterface(bytesOf(attribute(NL80211_ATTR_IFINDEX, raw(quint32(3)))
            + attribute(NL80211_ATTR_IFNAME, "wlan0\0junk"_ba)
            + attribute(NL80211_ATTR_IFTYPE, raw(quint32(2))) + attribute(9999, "unknown"_ba)
            + attribute(NL80211_ATTR_SSID, QByteArray("a\0b", 3))
            + attribute(NL80211_ATTR_WIPHY_FREQ, raw(quint32(2437)))));
        const InterfaceRecord expected {
            3, "wlan0"_ba, NL80211_IFTYPE_STATION, QByteArray("a\0b", 3), 2437};
        QCOMPARE(record, expected);
    }

    void interfaceWithOddSizesLosesOnlyThose()
    {
        const auto record = parseInterface(bytesOf(attribute(NL80211_ATTR_IFINDEX, raw(quint16(3)))
            + attribute(NL80211_ATTR_IFTYPE, raw(quint64(2)))
            + attribute(NL80211_ATTR_IFNAME, "w"_ba) + attribute(NL80211_ATTR_WIPHY_FREQ, {})));
        QCOMPARE(record, (InterfaceRecord {.name = "w"_ba}));
    }

    void interfaceOfSeveralLinksHasTheFirstChannelTold()
    {
        const QByteArray quiet = attribute(1, attribute(NL80211_ATTR_MLO_LINK_ID, raw(quint8(0))));
        const QByteArray link
            = attribute(2, attribute(NL80211_ATTR_WIPHY_FREQ, raw(quint32(5955))));
        const auto record
            = parseInterface(bytesOf(attribute(NL80211_ATTR_MLO_LINKS, quiet + link)));
        QCOMPARE(record.frequencyMhz, 5955);
    }

    void stations_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<int>("signal"); // 0: absent
        QTest::addColumn<double>("mbps"); // -1: absent

        QTest::newRow("nothing") << QByteArray() << 0 << -1.0;
        QTest::newRow("signal first") << station(kBeacon65 + kAverage63 + kSignal61) << -61 << -1.0;
        QTest::newRow("average second") << station(kBeacon65 + kAverage63) << -63 << -1.0;
        QTest::newRow("beacons last") << station(kBeacon65) << -65 << -1.0;
        QTest::newRow("odd signal passed over")
            << station(attribute(NL80211_STA_INFO_SIGNAL, raw(qint32(-61))) + kAverage63) << -63
            << -1.0;
        QTest::newRow("narrow rate")
            << rate(attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(8667)))) << 0 << 866.7;
        QTest::newRow("wide rate wins")
            << rate(attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(65535)))
                   + attribute(NL80211_RATE_INFO_BITRATE32, raw(quint32(115296))))
            << 0 << 11529.6;
        QTest::newRow("nested attribute that claims too much")
            << station(attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-61)), 200)) << 0 << -1.0;
    }

    void stations()
    {
        QFETCH(QByteArray, message);
        const auto record = parseStation(bytesOf(message));
        QTEST(record.signalDbm.value_or(0), "signal");
        QTEST(record.transmitRateMbps.value_or(-1.0), "mbps");
    }

    void noiseOfTheRightChannel()
    {
        const auto entry = [](quint32 mhz, int dbm, bool inUse) {
            return parseSurvey(bytesOf(attribute(NL80211_ATTR_SURVEY_INFO,
                attribute(NL80211_SURVEY_INFO_FREQUENCY, raw(mhz))
                    + attribute(NL80211_SURVEY_INFO_NOISE, raw(qint8(dbm)))
                    + (inUse ? attribute(NL80211_SURVEY_INFO_IN_USE, {}) : QByteArray()))));
        };
        const InterfaceRecord interface {
            .frequencyMhz = 2437
        };
        std::vector survey = {entry(2412, -80, false), entry(2437, -92, false)};
        QCOMPARE(linkReading(interface, {StationRecord {}}, survey, {}).noiseDbm, -92);
        QVERIFY(!linkReading({}, {}, survey, {}).noiseDbm);
        survey.push_back(entry(5180, -95, true));
        QCOMPARE(linkReading(interface, {StationRecord {}}, survey, {}).noiseDbm, -95);
    }

    void channelWithoutALinkIsNone()
    {
        const auto reading = linkReading({.name = "wlan0"_ba, .frequencyMhz = 5180},
            {StationRecord {.associated = false}}, {}, {});
        QCOMPARE(reading, LinkReading {.interfaceName = u"wlan0"_s});
    }

    void accessPointIsToldFromOtherPeers()
    {
        const auto peer
            = [](const QByteArray& info) { return parseStation(bytesOf(station(info))); };
        constexpr quint32 kAssociated = 1U << NL80211_STA_FLAG_ASSOCIATED;
        constexpr quint32 kDirect = 1U << NL80211_STA_FLAG_TDLS_PEER;
        const auto tdls = peer(flags(kDirect | kAssociated, kDirect | kAssociated)
            + attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-20))));
        const auto leaving
            = peer(flags(kAssociated, 0) + attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-30))));
        const auto blank = peer({});
        const auto mine = peer(flags(kAssociated, kAssociated) + kSignal61);
        QCOMPARE(linkReading({}, {tdls, leaving, blank, mine}, {}, {}).signalDbm, -61);
        QVERIFY(!linkReading({}, {tdls, leaving}, {}, {}).signalDbm);
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

    void channels_data()
    {
        QTest::addColumn<quint32>("mhz");
        QTest::addColumn<int>("number"); // 0: absent
        QTest::addColumn<ChannelBand>("band");
        const auto row = [](quint32 mhz, int number, ChannelBand band) {
            QTest::addRow("%u", mhz) << mhz << number << band;
        };
        for (const auto& [mhz, number] : {std::pair(2412U, 1), {2437U, 6}, {2472U, 13}, {2484U, 14},
                 {2407U, 0}, {2478U, 0}, {2489U, 0}})
            row(mhz, number, ChannelBand::TwoGHz);
        for (const auto& [mhz, number] : {std::pair(4920U, 184), {4980U, 196}, {5180U, 36},
                 {5885U, 177}, {4905U, 0}, {5000U, 0}})
            row(mhz, number, ChannelBand::FiveGHz);
        for (const auto& [mhz, number] : {std::pair(5935U, 2), {5955U, 1}, {5975U, 5}, {7115U, 233},
                 {5950U, 0}, {5930U, 0}, {7125U, 0}})
            row(mhz, number, ChannelBand::SixGHz);
        for (const quint32 mhz : {0U, 920U, 60480U, 4294967295U})
            row(mhz, 0, ChannelBand::Unknown);
    }

    void channels()
    {
        QFETCH(quint32, mhz);
        QFETCH(ChannelBand, band);
        const auto channel = channelOf(mhz);
        QTEST(channel ? channel->number : 0, "number");
        QVERIFY(!channel || channel->band == band);
    }
};

NETVANE_TEST(TestNl80211Messages)
#include "test_nl80211_messages.moc"
