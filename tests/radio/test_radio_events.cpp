#include "radio/radio_events.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane::platform;
using namespace netvane::radio;
using namespace netvane::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray kStation("\2\0\0\0\0\0", 6);
const QByteArray kHome("\2\0\0\0\1\0", 6);
const QByteArray kHome5("\2\0\0\0\2\0", 6);

struct Message {
    int command;
    QByteArray attributes;
    int secondsLater = 0;
};

Message connects(
    quint16 status, const QByteArray& bssid, const char* ssid = "\0\4Home", int later = 0)
{
    return {NL80211_CMD_CONNECT,
        attribute(NL80211_ATTR_STATUS_CODE, raw(status)) + attribute(NL80211_ATTR_MAC, bssid)
            + attribute(NL80211_ATTR_REQ_IE, QByteArray(ssid, 6)),
        later};
}

Message ends(quint16 reason, bool byAccessPoint = false, int later = 0)
{
    const QByteArray mark = attribute(NL80211_ATTR_DISCONNECTED_BY_AP, {});
    return {NL80211_CMD_DISCONNECT,
        attribute(NL80211_ATTR_REASON_CODE, raw(reason)) + (byAccessPoint ? mark : QByteArray()),
        later};
}

/// A frame of the access point kHome, or to it, with these two-byte numbers.
Message frame(int command, std::initializer_list<quint16> body, bool isOwn = false)
{
    QByteArray bytes = QByteArray(4, '\0') + (isOwn ? kHome + kStation : kStation + kHome) + kHome
        + "\0"_ba + '\0';
    for (const auto number : body)
        bytes += raw(number);
    return {command, attribute(NL80211_ATTR_FRAME, bytes)};
}

/// "Disconnected 16 by AP 01:00;".
QString text(const RadioEvent& event)
{
    static const QStringList kNames {u"Connected"_s, u"Disconnected"_s, u"Roamed"_s,
        u"SignInFailed"_s, u"ScanStarted"_s, u"ScanEnded"_s};
    return kNames[int(event.kind)] + (event.code ? u" %1"_s.arg(*event.code) : QString())
        + (event.byAccessPoint ? u" by AP"_s : QString())
        + (event.bssid ? u' ' + event.bssid->right(5) : QString()) + u';';
}

} // namespace

class TestRadioEvents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void messagesBecomeEvents()
    {
        constexpr int kDeauth = NL80211_CMD_DEAUTHENTICATE;
        constexpr int kAuth = NL80211_CMD_AUTHENTICATE;
        constexpr int kAssociate = NL80211_CMD_ASSOCIATE;
        auto cut = frame(kDeauth, {});
        cut.attributes.chop(8);
        const QByteArray timedOut
            = attribute(NL80211_ATTR_TIMED_OUT, {}) + attribute(NL80211_ATTR_MAC, kHome);
        // What comes, of an interface that is connected with kHome, and what is told.
        const std::vector<std::pair<std::vector<Message>, QString>> rows = {
            {{frame(kDeauth, {16}), ends(16, true)}, u"Disconnected 16 by AP 01:00;"_s},
            {{frame(kDeauth, {5}), {NL80211_CMD_DISCONNECT, {}}}, u"Disconnected 5 by AP 01:00;"_s},
            {{frame(kDeauth, {5}), ends(4, false, 60)}, u"Disconnected 4 01:00;"_s}, // an old frame
            {{frame(kDeauth, {}), {NL80211_CMD_DISCONNECT, {}}}, u"Disconnected by AP 01:00;"_s},
            {{cut, frame(kAuth, {0, 2}), frame(kAssociate, {0}), ends(1)},
                u"Disconnected 1 01:00;"_s},
            // Another access point: of the same network and soon, or late, or of another network.
            {{frame(kDeauth, {1}, true), ends(1), connects(0, kHome5)},
                u"Disconnected 1 01:00;Roamed 02:00;"_s},
            {{ends(1), connects(0, kHome5, "\0\4Home", 10)},
                u"Disconnected 1 01:00;Connected 02:00;"_s},
            {{ends(1), connects(0, kHome5, "\0\4Cafe")},
                u"Disconnected 1 01:00;Connected 02:00;"_s},
            {{ends(1), connects(0, kHome5, "\0\7Home")},
                u"Disconnected 1 01:00;Connected 02:00;"_s},
            {{ends(1), connects(0, kHome)}, u"Disconnected 1 01:00;Connected 01:00;"_s},
            {{{NL80211_CMD_ROAM, attribute(NL80211_ATTR_MAC, kHome5)}, ends(1), connects(0, kHome)},
                u"Roamed 02:00;Disconnected 1 02:00;Roamed 01:00;"_s},
            // A sign-in is refused once, twice, not at all, and not answered.
            {{frame(kAssociate, {0, 17, 0}), connects(17, kHome)}, u"SignInFailed 17 01:00;"_s},
            {{frame(kAuth, {0, 2, 1}), connects(1, kHome, "\0\4Home", 5)},
                u"SignInFailed 1 01:00;SignInFailed 1 01:00;"_s},
            {{frame(kAuth, {3, 1, 126}), frame(kAuth, {3, 2, 0}), frame(kAssociate, {0, 0, 1})},
                {}},
            {{{kAuth, timedOut}}, u"SignInFailed 01:00;"_s},
            {{{NL80211_CMD_TRIGGER_SCAN, {}}, {NL80211_CMD_SCAN_ABORTED, {}},
                 {NL80211_CMD_NEW_STATION, {}}},
                u"ScanStarted;ScanEnded;"_s}};
        for (const auto& [messages, expected] : rows) {
            RadioEventReader reader([](auto index) { return u"wlan%1"_s.arg(index); });
            reader.setLinks({{3, "Home"_ba, kHome}});
            RadioEventReader::TimePoint now {};
            QString told;
            for (const auto& message : messages) {
                now += std::chrono::seconds(message.secondsLater);
                const auto bytes = attribute(NL80211_ATTR_IFINDEX, raw(3)) + message.attributes;
                const auto event = reader.read({message.command, bytesOf(bytes)}, now);
                QVERIFY(!event || (event->interfaceName == u"wlan3"_s && event->at == now));
                told += event ? text(*event) : QString();
            }
            QCOMPARE(told, expected);
        }
    }
};

NETVANE_TEST(TestRadioEvents)
#include "test_radio_events.moc"
