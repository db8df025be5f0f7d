#include "radio/scan_events.h"
#include "radio/scan_results.h"
#include "scan_event_message.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

#include <linux/nl80211.h>

using namespace netvane::base;
using namespace netvane::platform;
using namespace netvane::radio;
using namespace netvane::test;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using Events = std::vector<ScanEvent>;

namespace {

QByteArray bssid(int last)
{
    return QByteArray::fromHex("0200000000") + char(last);
}

QByteArray element(int number, const QByteArray& value)
{
    return char(number) + (char(value.size()) + value);
}

BssRecord bss(const QByteArray& attributes)
{
    return parseBss(bytesOf(attribute(NL80211_ATTR_BSS, attributes)));
}

NearbyNetwork networkOf(const QByteArray& attributes)
{
    return nearbyNetworks({bss(attributes)}).at(0);
}

const QByteArray kBssid = attribute(NL80211_BSS_BSSID, bssid(7));
const QByteArray kChannel6 = attribute(NL80211_BSS_FREQUENCY, raw(quint32(2437)));
const QByteArray kSignal = attribute(NL80211_BSS_SIGNAL_MBM, raw(qint32(-6150)));

QByteArray elements(const QByteArray& bytes)
{
    return attribute(NL80211_BSS_INFORMATION_ELEMENTS, bytes);
}

} // namespace

class TestScanResults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void networks_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<NearbyNetwork>("network");
        const NearbyNetwork nameless {.bssid = u"02:00:00:00:00:07"_s,
            .channel = WiFiChannel {6, ChannelBand::TwoGHz},
            .signalDbm = -62};
        auto named = nameless;
        named.ssid = u"Home"_s;
        const QByteArray rest = kBssid + kChannel6 + kSignal;
        const QByteArray name = element(0, "Home"_ba);

        QTest::newRow("whole") << rest + elements(element(1, "\x82"_ba) + name) << named;
        QTest::newRow("hidden: empty") << rest + elements(element(0, {})) << nameless;
        QTest::newRow("name longer than any")
            << rest + elements(element(0, QByteArray(33, 'x'))) << nameless;
        QTest::newRow("element that lies before the name")
            << rest + elements(QByteArray("\x01\xff", 2) + name) << nameless;
        QTest::newRow("name only in the beacon")
            << rest + attribute(NL80211_BSS_BEACON_IES, name) << named;
        QTest::newRow("everything in an odd size") << attribute(NL80211_BSS_BSSID, "12345"_ba)
                + attribute(NL80211_BSS_FREQUENCY, raw(quint16(2437)))
                + attribute(NL80211_BSS_SIGNAL_MBM, raw(qint8(-61)))
                + elements(name) << NearbyNetwork {.ssid = u"Home"_s};
        QTest::newRow("nothing") << QByteArray() << NearbyNetwork {};
    }

    void networks()
    {
        QFETCH(QByteArray, attributes);
        QTEST(networkOf(attributes), "network");
    }

    void anAccessPointCountsOnce_data()
    {
        const auto entry = [](quint32 mhz, int age, const QByteArray& name) {
            return bss(kBssid + attribute(NL80211_BSS_FREQUENCY, raw(mhz))
                + (age < 0 ? QByteArray() : attribute(NL80211_BSS_SEEN_MS_AGO, raw(quint32(age))))
                + elements(element(0, name)));
        };
        QTest::addColumn<std::vector<BssRecord>>("table");
        QTest::addColumn<int>("channel");
        QTest::newRow("moved") << std::vector {entry(2412, 9000, "a"_ba), entry(2437, 10, "a"_ba)}
                               << 6;
        QTest::newRow("hidden, and named later")
            << std::vector {entry(2437, 10, {}), entry(2412, 9000, "a"_ba)} << 6;
        QTest::newRow("named, and hidden later")
            << std::vector {entry(2412, 9000, "a"_ba), entry(2437, 10, {})} << 6;
    }

    void anAccessPointCountsOnce()
    {
        QFETCH(std::vector<BssRecord>, table);
        const auto networks = nearbyNetworks(table);
        QCOMPARE(networks.size(), 1U);
        QCOMPARE(networks[0].ssid, u"a"_s);
        QTEST(networks[0].channel->number, "channel");
    }

    void tablesOfPartialScans()
    {
        const auto entry = [](int last, quint32 mhz, quint32 age) {
            return BssRecord {.frequencyMhz = mhz, .bssid = bssid(last), .seenMsAgo = age};
        };
        std::vector<BssRecord> table;
        addNewerTable(table, {entry(1, 2412, 10), entry(2, 2437, 10), BssRecord {}}, 99h);
        addNewerTable(table, {entry(1, 2462, 500), BssRecord {}}, 1s); // it has moved meanwhile
        const auto networks = nearbyNetworks(table);
        QCOMPARE(networks.size(), 3U);
        QCOMPARE(networks[0].channel->number, 11);
        QCOMPARE(networks[1].channel->number, 6);
    }

    void events_data()
    {
        QTest::addColumn<QByteArray>("datagram");
        QTest::addColumn<Events>("expected");
        const QByteArray done = scanEventMessage(NL80211_CMD_NEW_SCAN_RESULTS);
        QTest::newRow("one") << done << Events {ScanEvent::ResultsReady};
        QTest::newRow("several") << scanEventMessage(NL80211_CMD_TRIGGER_SCAN)
                + scanEventMessage(NL80211_CMD_SCAN_ABORTED)
                                 << Events {ScanEvent::Started, ScanEvent::Aborted};
        QTest::newRow("another interface")
            << scanEventMessage(NL80211_CMD_TRIGGER_SCAN, kWiFiFamily, 4) << Events {};
        QTest::newRow("another family")
            << scanEventMessage(NL80211_CMD_TRIGGER_SCAN, kWiFiFamily + 1) << Events {};
        QTest::newRow("claims too much")
            << scanEventMessage(NL80211_CMD_TRIGGER_SCAN, kWiFiFamily, 3, 400) << Events {};
        QTest::newRow("claims nothing")
            << scanEventMessage(NL80211_CMD_TRIGGER_SCAN, kWiFiFamily, 3, 0) + done << Events {};
    }

    void events()
    {
        QFETCH(QByteArray, datagram);
        QTEST(scanEvents(bytesOf(datagram), kWiFiFamily, 3), "expected");
    }
};

NETVANE_TEST(TestScanResults)
#include "test_scan_results.moc"
