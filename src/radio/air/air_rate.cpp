#include "radio/air/air_rate.h"

#include "netlink/netlink_attributes.h"

#include <linux/nl80211.h>

#include <algorithm>
#include <array>

namespace netvane::radio {

using platform::AirRate;
using platform::AirStandard;
using Rate = netlink::Attributes<NL80211_RATE_INFO_MAX>;

namespace {

/// Of the standards before HT, in Mbit/s. A driver that tells no more may well use a newer one.
constexpr std::array kLegacyMbps {
    1.0, 2.0, 5.5, 11.0, 6.0, 9.0, 12.0, 18.0, 24.0, 36.0, 48.0, 54.0};

struct Scheme {
    AirStandard standard;
    int mcs;
    int streams;
    int guardInterval; ///< an attribute with a number; 0: only a flag says "short"
};
/// The newest first.
constexpr std::array<Scheme, 3> kSchemes {{
    {AirStandard::Eht, NL80211_RATE_INFO_EHT_MCS, NL80211_RATE_INFO_EHT_NSS,
        NL80211_RATE_INFO_EHT_GI},
    {AirStandard::He, NL80211_RATE_INFO_HE_MCS, NL80211_RATE_INFO_HE_NSS, NL80211_RATE_INFO_HE_GI},
    {AirStandard::Vht, NL80211_RATE_INFO_VHT_MCS, NL80211_RATE_INFO_VHT_NSS, 0},
}};

constexpr std::array<std::pair<int, int>, 7> kWidths {{{NL80211_RATE_INFO_320_MHZ_WIDTH, 320},
    {NL80211_RATE_INFO_160_MHZ_WIDTH, 160}, {NL80211_RATE_INFO_80P80_MHZ_WIDTH, 160},
    {NL80211_RATE_INFO_80_MHZ_WIDTH, 80}, {NL80211_RATE_INFO_40_MHZ_WIDTH, 40},
    {NL80211_RATE_INFO_10_MHZ_WIDTH, 10}, {NL80211_RATE_INFO_5_MHZ_WIDTH, 5}}};

double flaggedInterval(const Rate& rate)
{
    constexpr double kShortUs = 0.4;
    constexpr double kLongUs = 0.8;
    return rate.has(NL80211_RATE_INFO_SHORT_GI) ? kShortUs : kLongUs;
}

void addScheme(AirRate& result, const Rate& rate)
{
    const auto scheme = std::ranges::find_if(kSchemes,
        [&rate](const Scheme& one) { return rate.number<std::uint8_t>(one.mcs).has_value(); });
    if (scheme != kSchemes.end()) {
        constexpr std::array kIntervalsUs {0.8, 1.6, 3.2};
        result.standard = scheme->standard;
        result.mcs = rate.number<std::uint8_t>(scheme->mcs);
        result.streams = rate.number<std::uint8_t>(scheme->streams);
        if (scheme->guardInterval == 0)
            result.guardIntervalUs = flaggedInterval(rate);
        else if (const auto number = rate.number<std::uint8_t>(scheme->guardInterval);
                 number && *number < kIntervalsUs.size())
            result.guardIntervalUs = kIntervalsUs.at(*number);
        return;
    }
    constexpr int kPerStream = 8;
    constexpr int kEqualModulation = 32; // beyond, the streams differ
    if (const auto number = rate.number<std::uint8_t>(NL80211_RATE_INFO_MCS)) {
        result.standard = AirStandard::Ht;
        result.guardIntervalUs = flaggedInterval(rate);
        if (*number < kEqualModulation) {
            result.streams = *number / kPerStream + 1;
            result.mcs = *number % kPerStream;
        }
    } else if (result.mbps && std::ranges::count(kLegacyMbps, *result.mbps) > 0) {
        result.standard = AirStandard::Legacy;
    }
}

} // namespace

AirRate parseAirRate(netlink::AttributeBytes attributes)
{
    constexpr double kUnitsPerMbps = 10;
    const Rate rate(attributes);
    AirRate result;
    // The 16 bits end at 6.5 Gbit/s.
    if (const auto wide = rate.number<std::uint32_t>(NL80211_RATE_INFO_BITRATE32))
        result.mbps = *wide / kUnitsPerMbps;
    else if (const auto narrow = rate.number<std::uint16_t>(NL80211_RATE_INFO_BITRATE))
        result.mbps = *narrow / kUnitsPerMbps;
    addScheme(result, rate);
    const auto width
        = std::ranges::find_if(kWidths, [&rate](const auto& one) { return rate.has(one.first); });
    if (width != kWidths.end())
        result.widthMhz = width->second;
    else if (result.standard && result.standard != AirStandard::Legacy)
        result.widthMhz = 20;
    return result;
}

} // namespace netvane::radio
