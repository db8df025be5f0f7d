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

const QByteArray kBssid = attribute(NL80211_BSS_BSSID, bssid(7));
const QByteArray kChannel6 = attribute(NL80211_BSS_FREQUENCY, raw(quint32(2437)));

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
        const QByteArray rest
            = kBssid + kChannel6 + attribute(NL80211_BSS_SIGNAL_MBM, raw(qint32(-6150)));
        const QByteArray name = element(0, "Home"_ba);
        const auto row
            = [](const char* title, const QByteArray& attributes, const NearbyNetwork& network) {
                  QTest::newRow(title) << attributes << network;
              };
        row("whole", rest + elements(element(1, "\x82"_ba) + name), named);
        row("hidden: empty", rest + elements(element(0, {})), nameless);
        row("name longer than any", rest + elements(element(0, QByteArray(33, 'x'))), nameless);
        row("element that lies", rest + elements(QByteArray("\x01\xff", 2) + name), nameless);
        row("name only in the beacon", rest + attribute(NL80211_BSS_BEACON_IES, name), named);
        row("odd sizes",
            attribute(NL80211_BSS_BSSID, "12345"_ba)
                + attribute(NL80211_BSS_FREQUENCY, raw(quint16(2437)))
                + attribute(NL80211_BSS_SIGNAL_MBM, raw(qint8(-61))) + elements(name),
            NearbyNetwork {.ssid = u"Home"_s});
    }

    void networks()
    {
        QFETCH(QByteArray, attributes);
        QTEST(nearbyNetworks({bss(attributes)}).at(0), "network");
    }

    void anAccessPointCountsOnce()
    {
        const auto entry = [](quint32 mhz, quint32 age, const QByteArray& name) {
            return bss(kBssid + attribute(NL80211_BSS_FREQUENCY, raw(mhz))
                + attribute(NL80211_BSS_SEEN_MS_AGO, raw(age)) + elements(element(0, name)));
        };
        for (const auto& table : {std::vector {entry(2412, 9000, "a"_ba), entry(2437, 10, "a"_ba)},
                 {entry(2437, 10, {}), entry(2412, 9000, "a"_ba)},
                 {entry(2412, 9000, "a"_ba), entry(2437, 10, {})}}) {
            const auto networks = nearbyNetworks(table);
            QCOMPARE(networks.size(), 1U);
            QCOMPARE(networks[0].ssid, u"a"_s);
            QCOMPARE(networks[0].channel->number, 6);
        }
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

    void events()
    {
        const auto found = [](const QByteArray& datagram) {
            return scanEvents(bytesOf(datagram), kWiFiFamily, 3);
        };
        const int start = NL80211_CMD_TRIGGER_SCAN;
        const QByteArray done = scanEventMessage(NL80211_CMD_NEW_SCAN_RESULTS);
        const QByteArray aborted = scanEventMessage(NL80211_CMD_SCAN_ABORTED);
        QCOMPARE(found(done), Events {ScanEvent::ResultsReady});
        QCOMPARE(found(scanEventMessage(start) + aborted),
            (Events {ScanEvent::Started, ScanEvent::Aborted}));
        const int otherFamily = kWiFiFamily + 1;
        for (const auto& other : {scanEventMessage(start, kWiFiFamily, 4),
                 scanEventMessage(start, otherFamily), // then two with a wrong length
                 scanEventMessage(start, kWiFiFamily, 3, 400),
                 scanEventMessage(start, kWiFiFamily, 3, 0) + done})
            QCOMPARE(found(other), Events {});
    }
};

NETVANE_TEST(TestScanResults)
#include "test_scan_results.moc"
