#pragma once

#include "platform/air.h"

#include <QStringList>

namespace netvane::wifi {

// What `platform::AirReading` holds, in words for people. A text is empty where nothing is known.

/// To one decimal place, which a whole number does not show.
QString numberText(double value);

/// "34 %".
QString percentText(double share);

platform::ChannelBand bandOf(const std::optional<platform::AirSpan>& span);

/// "Wi-Fi 6"; in 6 GHz "Wi-Fi 6E".
QString standardText(platform::AirStandard standard, platform::ChannelBand band);

/// "36 in 5 GHz, 80 MHz wide (5170 to 5250 MHz)".
QString spanText(const platform::AirSpan& span);

/// "866.7 Mbit/s (Wi-Fi 5, 2 streams, 80 MHz, MCS 9, guard interval 0.4 µs)".
QString rateText(const platform::AirRate& rate, platform::ChannelBand band);

/// "WPA2 or WPA3", "WPA2 with accounts", "open, nothing is encrypted".
QString securityText(const std::optional<platform::AirSecurity>& security);

/// "neighbour reports (802.11k)" and so on, those that are offered.
QStringList offerTexts(const platform::AirNetwork& network);

/// Why an adapter is used or is not: "its link carries the default route".
QString stateText(platform::AirAdapter::State state);

/// The lines about a link: a title without its colon, and the text.
using AirLines = QList<std::pair<QString, QString>>;
AirLines linkLines(const platform::AirReading& reading, const platform::AirChange& change);

} // namespace netvane::wifi
