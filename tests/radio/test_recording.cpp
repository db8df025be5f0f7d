#include "radio/air/elements.h"
#include "radio/air/recording_redaction.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

#include <linux/nl80211.h>

using namespace netvane::radio;
using netvane::test::attribute;
using netvane::test::raw;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray kHome = "Café \"home\""_ba;
const QByteArray kAccessPoint = "\x3c\x11\x22\x33\x44\x55"_ba;
const QByteArray kDevice = "\x3c\x66\x77\x12\x34\x56"_ba;
const QByteArray kOurs = "\x70\x71\x72\x73\x74\x75"_ba;
const QByteArray kKeyIdentifier = "identifier of 16"_ba;
const QByteArray kSerial = "serial4711"_ba;

QByteArray element(int number, const QByteArray& body)
{
    return char(number) + QByteArray(1, char(body.size())) + body;
}

/// With a secret in each element that has room for one.
QByteArray elements()
{
    const auto rsn = QByteArray::fromHex("0100000fac040100000fac040100000fac088000");
    return element(kSsid, kHome) + element(kRsn, rsn + QByteArray::fromHex("0100") + kKeyIdentifier)
        + element(kVendor, QByteArray::fromHex("0050f204") + kSerial + kHome)
        + element(201, kAccessPoint + kHome) + element(kBssLoad, kAccessPoint)
        + element(kExtension, QByteArray::fromHex("6b100008") + kDevice + "\1\0"_ba + kAccessPoint);
}

AirMessages messages()
{
    const auto link = attribute(NL80211_ATTR_MLO_LINK_ID, "\1"_ba)
        + attribute(NL80211_ATTR_MAC, kOurs) + attribute(NL80211_ATTR_WIPHY_FREQ, raw(5180U));
    const auto bss = attribute(NL80211_BSS_BSSID, kAccessPoint)
        + attribute(NL80211_BSS_FREQUENCY, raw(5180U))
        + attribute(NL80211_BSS_STATUS, raw(quint32(NL80211_BSS_STATUS_ASSOCIATED)))
        + attribute(NL80211_BSS_MLD_ADDR, kDevice)
        + attribute(NL80211_BSS_INFORMATION_ELEMENTS, elements())
        + attribute(NL80211_BSS_BEACON_IES, elements());
    const auto frame
        = QByteArray(4, '\1') + kOurs + kAccessPoint + kAccessPoint + "\0\0\3\0\1\0\0\0"_ba;
    return {{NL80211_CMD_GET_STATION,
                attribute(NL80211_ATTR_MAC, kDevice)
                    + attribute(NL80211_ATTR_STA_INFO,
                        attribute(NL80211_STA_INFO_SIGNAL, raw(qint8(-50)))
                            + attribute(999, kAccessPoint))},
        {NL80211_CMD_GET_SCAN, attribute(NL80211_ATTR_BSS, bss)},
        {NL80211_CMD_GET_INTERFACE,
            attribute(NL80211_ATTR_IFNAME, "wlx707172737475"_ba)
                + attribute(NL80211_ATTR_SSID, kHome) + attribute(NL80211_ATTR_KEY, kSerial)
                + attribute(NL80211_ATTR_MLO_LINKS, attribute(1, link))},
        {NL80211_CMD_AUTHENTICATE, attribute(NL80211_ATTR_FRAME, frame + kKeyIdentifier)},
        {NL80211_CMD_CONNECT, attribute(NL80211_ATTR_REQ_IE, elements())}};
}

} // namespace

class TestRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// None of the secrets stands anywhere, and what is left says the same.
    void redaction()
    {
        const AirRecording recording {.origin = u"test"_s,
            .adapters = {{.name = u"wlx707172737475"_s}},
            .moments = {{.messages = messages()}}};
        const auto text = recordingText(redacted(recording));
        for (const auto& secret :
            {kHome, kAccessPoint, kDevice, kOurs, kKeyIdentifier, kSerial, "707172737475"_ba}) {
            QVERIFY(recordingText(recording).contains(secret.toHex()));
            QVERIFY2(!text.contains(secret.toHex()) && !text.contains(secret), secret.toHex());
        }
        auto whole = readingAt(recording, 0);
        const auto replayed = recordingOf(text);
        QVERIFY(replayed && passesOf(*replayed) == std::vector<size_t> {0});
        auto left = readingAt(*replayed, 0);
        QCOMPARE(left.link->ssid, u"network 1"_s);
        QCOMPARE(left.link->accessPoint->deviceAddress, left.link->bssid);
        QCOMPARE(left.link->links.at(0).bssid, left.networks.at(0).bssid);
        for (auto* reading : {&whole, &left}) {
            auto& network = reading->networks.at(0);
            network.ssid.reset();
            network.bssid = network.deviceAddress = {};
            network.stations.reset(); // a load in which an address stands is no load
            network.utilization.reset();
        }
        QCOMPARE(left.networks, whole.networks);
        QCOMPARE(left.link->signalDbm, whole.link->signalDbm);
    }

    void noRecording()
    {
        for (const auto& text : {"{}"_ba, "[1]"_ba, QByteArray()})
            QVERIFY(!recordingOf(text));
        const auto odd = recordingOf(
            R"({"schema":"netvane.recording/1","moments":[1,{"messages":[{"command":300},{"command":5}]}]})"_ba);
        QVERIFY(odd && odd->moments.size() == 2 && passesOf(*odd).size() == 1);
    }
};

NETVANE_TEST(TestRecording)
#include "test_recording.moc"
