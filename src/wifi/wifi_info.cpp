#include "wifi/wifi_info.h"

#include "base/decimal_text.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {
namespace {

/// The texts of a band, in the order of `WiFiFrequency`.
struct BandTexts {
    QString displayName;
    QString phyMode; ///< the likely standard when the rate does not tell
};
const std::array<BandTexts, 4> kBandTexts {{
    {u"2.4 GHz"_s, u"802.11n (WiFi 4)"_s},
    {u"5 GHz"_s, u"802.11ac (WiFi 5) or 802.11ax (WiFi 6)"_s},
    {u"6 GHz (WiFi 6E)"_s, u"802.11ax (WiFi 6E)"_s},
    {u"Unknown"_s, u"Unknown"_s},
}};

} // namespace

QString displayName(WiFiFrequency frequency)
{
    return kBandTexts.at(size_t(frequency)).displayName;
}

SignalQuality signalQuality(std::optional<int> signalDbm)
{
    if (!signalDbm)
        return SignalQuality::unknown;
    if (*signalDbm >= -59)
        return SignalQuality::excellent;
    if (*signalDbm >= -69)
        return SignalQuality::good;
    return *signalDbm >= -79 ? SignalQuality::fair : SignalQuality::poor;
}

QString caseName(SignalQuality quality)
{
    static const std::array<QString, 5> names {
        u"excellent"_s, u"good"_s, u"fair"_s, u"poor"_s, u"unknown"_s};
    return names.at(size_t(quality));
}

QString WiFiInfo::id() const
{
    return base::shortestDecimal(timestamp);
}

QString WiFiInfo::phyMode() const
{
    if (!mcsIndex)
        return kBandTexts.at(size_t(frequency)).phyMode;
    if (*mcsIndex <= 7)
        return u"802.11n (WiFi 4)"_s;
    if (*mcsIndex <= 9)
        return u"802.11ac (WiFi 5)"_s;
    return frequency == WiFiFrequency::sixGHz ? u"802.11ax (WiFi 6E)"_s : u"802.11ax (WiFi 6)"_s;
}

} // namespace netvane::wifi
