#include "wifi/wifi_info.h"

#include "base/timestamp.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {
namespace {

QString phyModeOfBand(WiFiFrequency frequency)
{
    switch (frequency) {
    case WiFiFrequency::twoPointFourGHz:
        return u"802.11n (WiFi 4)"_s;
    case WiFiFrequency::fiveGHz:
        return u"802.11ac (WiFi 5) or 802.11ax (WiFi 6)"_s;
    case WiFiFrequency::sixGHz:
        return u"802.11ax (WiFi 6E)"_s;
    case WiFiFrequency::unknown:
        break;
    }
    return u"Unknown"_s;
}

} // namespace

QString displayName(WiFiFrequency frequency)
{
    switch (frequency) {
    case WiFiFrequency::twoPointFourGHz:
        return u"2.4 GHz"_s;
    case WiFiFrequency::fiveGHz:
        return u"5 GHz"_s;
    case WiFiFrequency::sixGHz:
        return u"6 GHz (WiFi 6E)"_s;
    case WiFiFrequency::unknown:
        break;
    }
    return u"Unknown"_s;
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
    switch (quality) {
    case SignalQuality::excellent:
        return u"excellent"_s;
    case SignalQuality::good:
        return u"good"_s;
    case SignalQuality::fair:
        return u"fair"_s;
    case SignalQuality::poor:
        return u"poor"_s;
    case SignalQuality::unknown:
        break;
    }
    return u"unknown"_s;
}

QString WiFiInfo::id() const
{
    return base::shortestDecimal(timestamp);
}

QString WiFiInfo::phyMode() const
{
    if (!mcsIndex)
        return phyModeOfBand(frequency);
    if (*mcsIndex <= 7)
        return u"802.11n (WiFi 4)"_s;
    if (*mcsIndex <= 9)
        return u"802.11ac (WiFi 5)"_s;
    return frequency == WiFiFrequency::sixGHz ? u"802.11ax (WiFi 6E)"_s : u"802.11ax (WiFi 6)"_s;
}

} // namespace netvane::wifi
