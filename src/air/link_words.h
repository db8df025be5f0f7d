#pragma once

#include "platform/air.h"

#include <QString>

namespace netvane::air {

/// One property in words; what is not known has no line.
struct Line {
    QString name; ///< "Sends at"
    QString value; ///< "866 Mbit/s (Wi-Fi 5, 2 streams, 80 MHz, MCS 9)"

    bool operator==(const Line&) const = default;
};
/// Everything that is known of the link, for users. `change` is how it went since some moment.
std::vector<Line> linkLines(const platform::AirReading& reading, const platform::AirChange& change);

/// Unknown without a span, too.
platform::ChannelBand bandOf(const std::optional<platform::AirSpan>& span);
/// "36 of 5 GHz, 80 MHz wide"
QString channelText(const platform::AirSpan& span);
/// "WPA2 or WPA3", "open", "WPA2 with an account"
QString securityText(const platform::AirSecurity& security);
/// "Wi-Fi 6", "Wi-Fi 6E"
QString standardText(platform::AirStandard standard, platform::ChannelBand band);
/// "In use: it carries the default route, driver iwlwifi, firmware 77"
QString adapterText(const platform::AirAdapter& adapter);

} // namespace netvane::air
