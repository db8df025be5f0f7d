#include "insights/recommendations.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::insights {
namespace {

constexpr int kVeryLowSignalDbm = -76; // and below
constexpr int kModerateSignalDbm = -61;
constexpr double kHighJitterMs = 30.0; // above it

QStringList bandAdvice(const wifi::WiFiInfo& info)
{
    if (info.frequency != wifi::WiFiFrequency::twoPointFourGHz)
        return {};
    return {u"Using an older Wi-Fi standard (Wi-Fi 4) - try moving to 5 GHz for better speeds."_s};
}

QStringList signalAdvice(const wifi::WiFiInfo& info)
{
    if (!info.signalStrength || *info.signalStrength > kModerateSignalDbm)
        return {};
    if (*info.signalStrength > kVeryLowSignalDbm)
        return {
            u"Signal strength is functional but not ideal - consider moving closer to the router."_s};
    return {
        u"Signal strength is very low - move closer to the router or adjust antenna orientation."_s};
}

QStringList jitterAdvice(const probes::NetworkMetrics& router)
{
    if (!router.jitter || !(*router.jitter > kHighJitterMs))
        return {};
    return {u"High jitter detected - check your router and network congestion."_s};
}

} // namespace

QStringList recommendations(const RecommendationInputs& inputs)
{
    QStringList advice;
    if (inputs.wifiInfo)
        advice = bandAdvice(*inputs.wifiInfo) + signalAdvice(*inputs.wifiInfo);
    if (inputs.routerMetrics)
        advice += jitterAdvice(*inputs.routerMetrics);
    return advice;
}

} // namespace netvane::insights
