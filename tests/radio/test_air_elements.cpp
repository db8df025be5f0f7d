#include "radio/air/air_networks.h"
#include "radio/air/air_rate.h"
#include "radio/air/elements.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QTest>

#include <linux/nl80211.h>

using namespace netvane::platform;
using namespace netvane::radio;
using namespace netvane::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// An element; zero bytes complete its body to `size`.
QByteArray element(int number, const QByteArray& hex, qsizetype size = 0)
{
    auto body = QByteArray::fromHex(hex);
    body.append(std::max<qsizetype>(0, size - body.size()), '\0');
    if (number > kExtension)
        body.prepend(char(number - kExtension - 1));
    return char(std::min<int>(number, kExtension)) + QByteArray(1, char(body.size())) + body;
}

QByteArray ht(const QByteArray& operation)
{
    return element(kHtCapabilities, "ef0117ffff"_ba, 26) + element(kHtOperation, operation, 22);
}

QByteArray vht(const QByteArray& operation)
{
    return ht("2405"_ba) + element(kVhtCapabilities, "00000000eaff"_ba, 12)
        + element(kVhtOperation, operation, 5);
}

QByteArray he(const QByteArray& operation)
{
    return element(kHeCapabilities, QByteArray(34, '0') + "faff"_ba, 21)
        + element(kHeOperation, operation);
}

QByteArray rsn(const QByteArray& suites, const QByteArray& capabilities)
{
    const auto count = QByteArray::number(suites.size() / 8).rightJustified(2, '0') + "00"_ba;
    return element(kRsn, "0100000fac040100000fac04"_ba + count + suites + capabilities);
}

QString textOf(const AirNetwork& network)
{
    const auto number = [](const auto& value) { return value ? QString::number(*value) : u"-"_s; };
    constexpr std::array kStandards {"legacy"_L1, "HT"_L1, "VHT"_L1, "HE"_L1, "EHT"_L1};
    QStringList parts {QString(kStandards.at(size_t(*network.standard))),
        number(network.streams) + u'x' + number(network.span->widthMhz) + u'@'
            + number(network.span->centreMhz)};
    const auto add = [&parts](bool is, const QString& name) {
        if (is)
            parts.append(name);
    };
    add(network.span->secondCentreMhz.has_value(), u'+' + number(network.span->secondCentreMhz));
    const auto security = network.security.value_or(AirSecurity {});
    for (const auto& [member, name] : {std::pair(&AirSecurity::wep, u"wep"_s),
             {&AirSecurity::wpa, u"wpa"_s}, {&AirSecurity::wpa2, u"wpa2"_s},
             {&AirSecurity::wpa3, u"wpa3"_s}, {&AirSecurity::enterprise, u"802.1X"_s},
             {&AirSecurity::enterprise192, u"192"_s}, {&AirSecurity::owe, u"owe"_s},
             {&AirSecurity::other, u"other"_s}, {&AirSecurity::protectsManagement, u"mfp"_s},
             {&AirSecurity::requiresProtection, u"mfp!"_s}})
        add(security.*member, name);
    add(network.offersNeighbours, u"k"_s);
    add(network.offersTransition, u"v"_s);
    add(network.offersFastTransition, u"r"_s + number(network.mobilityDomain));
    add(network.stations.has_value(),
        number(network.stations) + u'/'
            + QString::number(network.utilization.value_or(-1), 'f', 2));
    add(network.country.has_value(), network.country.value_or(QString()));
    add(network.deviceAddress.has_value(),
        network.deviceAddress.value_or(QString()) + u'#' + number(network.linkId));
    return parts.join(u' ');
}

QByteArray rate(const QList<std::pair<int, quint8>>& numbers)
{
    QByteArray bytes;
    for (const auto& [number, value] : numbers)
        bytes += attribute(number, value == 255 ? QByteArray() : raw(value)); // 255: a flag
    return bytes;
}

} // namespace

class TestAirElements : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void networks_data()
    {
        QTest::addColumn<quint32>("mhz");
        QTest::addColumn<QByteArray>("elements");
        QTest::addColumn<QString>("text");
        const auto row
            = [](const char* name, quint32 mhz, const QByteArray& elements, const QString& text) {
                  QTest::newRow(name) << mhz << elements << text;
              };
        const auto plain = u"legacy -x20@2437"_s;
        row("nothing", 2437, {}, plain + u" wep"_s);
        row("HT above", 2437, ht("0605"_ba), u"HT 2x40@2447 wep"_s);
        row("HT below", 2437, ht("0607"_ba), u"HT 2x40@2427 wep"_s);
        row("HT narrow", 2437, ht("0603"_ba), u"HT 2x20@2437 wep"_s);
        row("VHT 80", 5180, vht("012a00"_ba), u"VHT 3x80@5210 wep"_s);
        row("VHT 160", 5180, vht("012a32"_ba), u"VHT 3x160@5250 wep"_s);
        row("VHT 160 of old", 5180, vht("0232"_ba), u"VHT 3x160@5250 wep"_s);
        row("VHT 80+80", 5180, vht("012a9b"_ba), u"VHT 3x160@5210 +5775 wep"_s);
        row("VHT elsewhere", 5180, vht("019b00"_ba), u"VHT 3x40@5190 wep"_s);
        row("VHT in 2.4 GHz", 2437, vht("012a00"_ba), u"VHT 3x40@2447 wep"_s);
        row("HE with VHT's", 5180, ht("2405"_ba) + he("004000 00 0000 012a32"_ba),
            u"HE 2x160@5250 wep"_s);
        const auto sixGHz = he("008002 00 0000 99 05 02 07 00"_ba); // after a co-hosted BSS
        row("HE in 6 GHz", 5975, sixGHz, u"HE 2x80@5985 wep"_s);
        row("HE in 6 GHz, 160", 5975, he("000002 00 0000 05 03 07 0f"_ba), u"HE 2x160@6025 wep"_s);
        const auto eht = element(kEhtCapabilities, "0000 000000000000000000 24"_ba, 14);
        row("EHT 320", 5975,
            sixGHz + eht + element(kEhtOperation, "01 44444444 04 0f 1f"_ba)
                + element(kMultiLink, "1000 08 020000000007 01 00"_ba),
            u"EHT 4x320@6105 wep 02:00:00:00:00:07#1"_s);
        row("EHT without more", 5975, sixGHz + eht + element(kEhtOperation, "00 44444444"_ba),
            u"EHT 4x80@5985 wep"_s);
        row("link's number not there", 2437, element(kMultiLink, "1000 07 020000000007 01"_ba),
            plain + u" wep 02:00:00:00:00:07#-"_s);
        row("WPA2", 2437, rsn("000fac02"_ba, "0000"_ba), plain + u" wpa2"_s);
        row("WPA2 and 3", 2437, rsn("000fac02000fac08"_ba, "8000"_ba), plain + u" wpa2 wpa3 mfp"_s);
        row("OWE", 2437, rsn("000fac12"_ba, "c000"_ba), plain + u" owe mfp mfp!"_s);
        row("accounts", 2437, rsn("000fac05000fac0c"_ba, {}), plain + u" 802.1X 192"_s);
        row("unknown suite", 2437, rsn("00409600"_ba, {}), plain + u" other"_s);
        row("no suite", 2437, rsn({}, "0000"_ba), plain + u" other"_s);
        row("RSN cut off", 2437, element(kRsn, "0100000fac0401"_ba), plain + u" other"_s);
        row("RSN by default", 2437, element(kRsn, "0100"_ba), plain + u" 802.1X"_s);
        row("WPA", 2437, element(kVendor, "0050f202"_ba) + element(kVendor, "0050f2010100"_ba),
            plain + u" wpa"_s);
        row("what it offers", 2437,
            element(kRmCapabilities, "02"_ba) + element(kExtendedCapabilities, "000008"_ba)
                + element(kMobilityDomain, "341201"_ba) + element(kBssLoad, "0201330000"_ba)
                + element(kCountry, "4445 20"_ba) + element(kCountry, "5553"_ba),
            plain + u" wep k v r4660 258/0.20 DE"_s);
        row("odd ones", 2437,
            element(kBssLoad, "0201"_ba) + element(kCountry, "0a45"_ba) + element(kExtension, {})
                + element(kHeOperation, "0040"_ba) + element(kHtCapabilities, "00"_ba)
                + QByteArray("\x0b\x05\x01", 3),
            u"HT -x20@2437 wep"_s);
    }

    void networks()
    {
        QFETCH(quint32, mhz);
        QFETCH(QByteArray, elements);
        const auto network = parseAirNetwork(bytesOf(attribute(NL80211_ATTR_BSS,
            attribute(NL80211_BSS_FREQUENCY, raw(mhz))
                + attribute(NL80211_BSS_CAPABILITY, raw(quint16(0x11)))
                + attribute(NL80211_BSS_INFORMATION_ELEMENTS, elements))));
        QTEST(textOf(network), "text");
    }

    void rates()
    {
        const auto bits = attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(540)));
        const std::pair<QByteArray, AirRate> rows[] = {
            {bits, {54, AirStandard::Legacy}},
            {attribute(NL80211_RATE_INFO_BITRATE, raw(quint16(650))), {65}}, // of HT, or not
            {rate({{NL80211_RATE_INFO_MCS, 12}, {NL80211_RATE_INFO_SHORT_GI, 255}}),
                {{}, AirStandard::Ht, 2, 4, 20, 0.4}},
            {rate({{NL80211_RATE_INFO_MCS, 33}}), {{}, AirStandard::Ht, {}, {}, 20, 0.8}},
            {bits
                    + rate({{NL80211_RATE_INFO_VHT_MCS, 9}, {NL80211_RATE_INFO_VHT_NSS, 3},
                        {NL80211_RATE_INFO_80P80_MHZ_WIDTH, 255}}),
                {54, AirStandard::Vht, 3, 9, 160, 0.8}},
            {rate({{NL80211_RATE_INFO_HE_MCS, 11}, {NL80211_RATE_INFO_HE_GI, 2},
                 {NL80211_RATE_INFO_80_MHZ_WIDTH, 255}}),
                {{}, AirStandard::He, {}, 11, 80, 3.2}},
            {rate({{NL80211_RATE_INFO_EHT_MCS, 13}, {NL80211_RATE_INFO_EHT_NSS, 2},
                 {NL80211_RATE_INFO_EHT_GI, 9}, {NL80211_RATE_INFO_320_MHZ_WIDTH, 255}}),
                {{}, AirStandard::Eht, 2, 13, 320, {}}},
        };
        for (const auto& [bytes, expected] : rows)
            QCOMPARE(parseAirRate(bytesOf(bytes)), expected);
    }
};

NETVANE_TEST(TestAirElements)
#include "test_air_elements.moc"
