#include "radio/air/recording_redaction.h"

#include "radio/air/elements.h"
#include "radio/air/security_elements.h"

#include <QHash>

#include <linux/nl80211.h>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

using netlink::AttributeBytes;

namespace {

constexpr qsizetype kAddressSize = 6;
// Shorter names are found everywhere by chance.
constexpr qsizetype kShortestSearched = 4;

/// What happens to an attribute.
enum class Treatment { Keep, Address, Ssid, Elements, Name, Frame, Inside, EachInside };
struct Rule {
    int attribute;
    Treatment treatment;
    bool isBss = false; ///< of NL80211_ATTR_BSS, not of the message
};
/// All others are dropped. What stays whole is made of numbers only.
constexpr std::array kRules = std::to_array<Rule>({
    {NL80211_ATTR_WIPHY, Treatment::Keep},
    {NL80211_ATTR_IFINDEX, Treatment::Keep},
    {NL80211_ATTR_IFNAME, Treatment::Name},
    {NL80211_ATTR_IFTYPE, Treatment::Keep},
    {NL80211_ATTR_GENERATION, Treatment::Keep},
    {NL80211_ATTR_WIPHY_FREQ, Treatment::Keep},
    {NL80211_ATTR_CHANNEL_WIDTH, Treatment::Keep},
    {NL80211_ATTR_CENTER_FREQ1, Treatment::Keep},
    {NL80211_ATTR_CENTER_FREQ2, Treatment::Keep},
    {NL80211_ATTR_WIPHY_TX_POWER_LEVEL, Treatment::Keep},
    {NL80211_ATTR_WIPHY_BANDS, Treatment::Keep},
    {NL80211_ATTR_PS_STATE, Treatment::Keep},
    {NL80211_ATTR_REG_ALPHA2, Treatment::Keep},
    {NL80211_ATTR_REG_RULES, Treatment::Keep},
    {NL80211_ATTR_STA_INFO, Treatment::Keep},
    {NL80211_ATTR_SURVEY_INFO, Treatment::Keep},
    {NL80211_ATTR_MAC, Treatment::Address},
    {NL80211_ATTR_MLD_ADDR, Treatment::Address},
    {NL80211_ATTR_SSID, Treatment::Ssid},
    {NL80211_ATTR_BSS, Treatment::Inside},
    {NL80211_ATTR_MLO_LINKS, Treatment::EachInside},
    {NL80211_ATTR_MLO_LINK_ID, Treatment::Keep},
    {NL80211_ATTR_STATUS_CODE, Treatment::Keep},
    {NL80211_ATTR_REASON_CODE, Treatment::Keep},
    {NL80211_ATTR_TIMED_OUT, Treatment::Keep},
    {NL80211_ATTR_DISCONNECTED_BY_AP, Treatment::Keep},
    {NL80211_ATTR_SCAN_FREQUENCIES, Treatment::Keep},
    {NL80211_ATTR_REQ_IE, Treatment::Elements},
    {NL80211_ATTR_RESP_IE, Treatment::Elements},
    {NL80211_ATTR_FRAME, Treatment::Frame},
    {NL80211_BSS_BSSID, Treatment::Address, true},
    {NL80211_BSS_MLD_ADDR, Treatment::Address, true},
    {NL80211_BSS_FREQUENCY, Treatment::Keep, true},
    {NL80211_BSS_BEACON_INTERVAL, Treatment::Keep, true},
    {NL80211_BSS_CAPABILITY, Treatment::Keep, true},
    {NL80211_BSS_INFORMATION_ELEMENTS, Treatment::Elements, true},
    {NL80211_BSS_BEACON_IES, Treatment::Elements, true},
    {NL80211_BSS_SIGNAL_MBM, Treatment::Keep, true},
    {NL80211_BSS_SIGNAL_UNSPEC, Treatment::Keep, true},
    {NL80211_BSS_STATUS, Treatment::Keep, true},
    {NL80211_BSS_SEEN_MS_AGO, Treatment::Keep, true},
    {NL80211_BSS_CHAN_WIDTH, Treatment::Keep, true},
    {NL80211_BSS_CHAIN_SIGNAL, Treatment::Keep, true},
    {NL80211_BSS_MLO_LINK_ID, Treatment::Keep, true},
});

/// Rates, country, load and what HT, VHT, HE and EHT describe: numbers only.
constexpr std::array kHarmless {1, 3, 50, 195, 244, 256 + 39, 256 + 59, int(kCountry),
    int(kBssLoad), int(kHtCapabilities), int(kHtOperation), int(kRmCapabilities),
    int(kExtendedCapabilities), int(kVhtCapabilities), int(kVhtOperation), int(kHeCapabilities),
    int(kHeOperation), int(kEhtOperation), int(kEhtCapabilities)};

void addAttribute(QByteArray& list, int number, const QByteArray& payload)
{
    const nlattr header {
        .nla_len = std::uint16_t(NLA_HDRLEN + payload.size()), .nla_type = std::uint16_t(number)};
    list.append(reinterpret_cast<const char*>(&header), sizeof header);
    list += payload;
    list.append(NLA_ALIGN(payload.size()) - payload.size(), '\0');
}

void addElement(QByteArray& list, int number, QByteArray body)
{
    if (number > kExtension)
        body.prepend(char(number - kExtension - 1));
    list.append(char(std::min<int>(number, kExtension)));
    list.append(char(body.size()));
    list += body;
}

/// Knows every secret that it replaced, so that a second time it finds them elsewhere, too.
class Redactor {
public:
    QByteArray attributes(AttributeBytes bytes, bool isBss);
    QByteArray name(const QByteArray& name);

private:
    QByteArray payload(const Rule& rule, AttributeBytes bytes);
    QByteArray kept(QByteArray bytes) const;
    QByteArray address(const QByteArray& bytes);
    QByteArray ssid(const QByteArray& bytes);
    QByteArray elements(const QByteArray& bytes);
    QByteArray multiLink(const QByteArray& body);
    QByteArray frame(QByteArray bytes);

    QHash<QByteArray, QByteArray> m_addresses;
    QHash<QByteArray, QByteArray> m_ssids;
    QHash<QByteArray, QByteArray> m_names;
};

QByteArray Redactor::attributes(AttributeBytes bytes, bool isBss)
{
    QByteArray list;
    forEachNested(bytes, [&](int number, AttributeBytes inside) {
        const auto rule = std::ranges::find_if(
            kRules, [&](const Rule& one) { return one.attribute == number && one.isBss == isBss; });
        if (rule != kRules.end())
            addAttribute(list, number, payload(*rule, inside));
    });
    return list;
}

QByteArray Redactor::payload(const Rule& rule, AttributeBytes inside)
{
    const auto bytes = bytesOf(inside);
    switch (rule.treatment) {
    case Treatment::Keep:
        return kept(bytes);
    case Treatment::Address:
        return address(bytes);
    case Treatment::Ssid:
        return ssid(bytes);
    case Treatment::Elements:
        return elements(bytes);
    case Treatment::Name:
        return name(bytes);
    case Treatment::Frame:
        return frame(bytes);
    case Treatment::Inside:
        return attributes(inside, true);
    case Treatment::EachInside:
        break;
    }
    QByteArray list;
    forEachNested(inside, [&](int number, AttributeBytes one) {
        addAttribute(list, number, attributes(one, false));
    });
    return list;
}

QByteArray Redactor::kept(QByteArray bytes) const
{
    for (const auto* secrets : {&m_addresses, &m_ssids}) {
        for (const auto& secret : secrets->keys()) {
            if (secret.size() >= kShortestSearched)
                bytes.replace(secret, QByteArray(secret.size(), '\0'));
        }
    }
    return bytes;
}

QByteArray Redactor::address(const QByteArray& bytes)
{
    if (bytes.size() != kAddressSize)
        return {};
    const auto known = m_addresses.constFind(bytes);
    if (known != m_addresses.cend())
        return *known;
    const auto count = m_addresses.size() + 1;
    return *m_addresses.insert(bytes, QByteArray("\2\0\0\0", 4) + char(count >> 8) + char(count));
}

/// A hidden name stays hidden.
QByteArray Redactor::ssid(const QByteArray& bytes)
{
    if (bytes.count('\0') == bytes.size())
        return bytes;
    const auto known = m_ssids.constFind(bytes);
    if (known != m_ssids.cend())
        return *known;
    return *m_ssids.insert(bytes, "network " + QByteArray::number(m_ssids.size() + 1));
}

QByteArray Redactor::name(const QByteArray& bytes)
{
    const QByteArray text(bytes.constData()); // up to its zero
    const auto known = m_names.constFind(text);
    if (known != m_names.cend())
        return *known;
    return *m_names.insert(text, "wlan" + QByteArray::number(m_names.size()) + '\0');
}

QByteArray Redactor::elements(const QByteArray& bytes)
{
    constexpr qsizetype kVendorType = 4;
    QByteArray list;
    forEachElement(elementsOf(bytes), [&](int number, ElementBytes inside) {
        const auto body = bytesOf(std::as_bytes(inside));
        if (number == kSsid)
            addElement(list, number, ssid(body));
        else if (number == kRsn)
            addElement(list, number, kept(body.first(qsizetype(rsnPolicySize(inside)))));
        else if (number == kVendor)
            addElement(list, number,
                isWpaElement(inside) ? kept(body) : body.first(std::min(body.size(), kVendorType)));
        else if (number == kMobilityDomain)
            addElement(list, number, QByteArray(2, '\0') + body.mid(2, 1));
        else if (number == kMultiLink)
            addElement(list, number, multiLink(body));
        else if (std::ranges::count(kHarmless, number) > 0)
            addElement(list, number, kept(body));
    });
    return list;
}

/// Without the profiles of the other links.
QByteArray Redactor::multiLink(const QByteArray& body)
{
    constexpr qsizetype kLength = 2;
    constexpr qsizetype kAddress = 3;
    if (body.size() < kAddress + kAddressSize)
        return {};
    const auto end = std::min<qsizetype>(body.size(), kLength + uchar(body[kLength]));
    return body.first(kAddress) + address(body.sliced(kAddress, kAddressSize))
        + kept(body.mid(
            kAddress + kAddressSize, std::max<qsizetype>(0, end - kAddress - kAddressSize)));
}

/// The header with its three addresses, and the fixed fields.
QByteArray Redactor::frame(QByteArray bytes)
{
    constexpr qsizetype kHeader = 24;
    constexpr qsizetype kFixed = 6;
    if (bytes.size() < kHeader)
        return {};
    bytes.truncate(kHeader + kFixed);
    for (const qsizetype at : {4, 10, 16})
        bytes.replace(at, kAddressSize, address(bytes.sliced(at, kAddressSize)));
    return bytes;
}

} // namespace

AirRecording redacted(const AirRecording& recording)
{
    Redactor redactor;
    AirRecording result;
    for (int pass = 0; pass < 2; ++pass) {
        result = recording;
        for (auto& moment : result.moments) {
            for (auto& message : moment.messages)
                message.attributes = redactor.attributes(attributesOf(message), false);
        }
        for (auto& adapter : result.adapters)
            adapter.name = QString::fromLatin1(redactor.name(adapter.name.toUtf8()).constData());
    }
    return result;
}

} // namespace netvane::radio
