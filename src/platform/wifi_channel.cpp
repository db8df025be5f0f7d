#include "platform/wifi_client.h"

#include <algorithm>

namespace netvane::platform {

ChannelBand bandOf(std::uint32_t frequencyMhz)
{
    if (frequencyMhz >= 5925 && frequencyMhz < 7250)
        return ChannelBand::SixGHz;
    if (frequencyMhz > 4900 && frequencyMhz < 5925)
        return ChannelBand::FiveGHz;
    if (frequencyMhz >= 2400 && frequencyMhz < 2500)
        return ChannelBand::TwoGHz;
    return ChannelBand::Unknown;
}

std::optional<WiFiChannel> channelOf(std::uint32_t frequencyMhz)
{
    const int mhz = int(std::min(frequencyMhz, 100'000U));
    const ChannelBand band = bandOf(frequencyMhz);
    const auto counted = [mhz, band](int base, int last) -> std::optional<WiFiChannel> {
        const int number = (mhz - base) / 5;
        if (number < 1 || number > last)
            return {};
        return WiFiChannel {number, band};
    };
    switch (band) {
    case ChannelBand::TwoGHz: // 14 stands apart
        return mhz == 2484 ? WiFiChannel {14, band} : counted(2407, 13);
    case ChannelBand::FiveGHz:
        return mhz >= 4910 && mhz <= 4980 ? counted(4000, 196) : counted(5000, 196);
    case ChannelBand::SixGHz: // 2 lies below 1
        return mhz == 5935 ? WiFiChannel {2, band} : counted(5950, 233);
    case ChannelBand::Unknown:
        break;
    }
    return {};
}

} // namespace netvane::platform
