#include "wifi/air_words.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {

using platform::AirSecurity;
using platform::AirStandard;
using platform::ChannelBand;

namespace {

QString bandName(ChannelBand band)
{
    constexpr std::array kNames {""_L1, "2.4 GHz"_L1, "5 GHz"_L1, "6 GHz"_L1};
    return kNames.at(size_t(band));
}

} // namespace

QString numberText(double value)
{
    return QString::number(value, 'f', value == double(qint64(value)) ? 0 : 1);
}

QString percentText(double share)
{
    return QString::number(share * 100, 'f', 0) + u" %"_s;
}

ChannelBand bandOf(const std::optional<platform::AirSpan>& span)
{
    return span ? platform::bandOf(span->primaryMhz) : ChannelBand::Unknown;
}

QString standardText(AirStandard standard, ChannelBand band)
{
    switch (standard) {
    case AirStandard::Legacy:
        return u"a standard before Wi-Fi 4"_s;
    case AirStandard::Ht:
        return u"Wi-Fi 4"_s;
    case AirStandard::Vht:
        return u"Wi-Fi 5"_s;
    case AirStandard::He:
        return band == ChannelBand::SixGHz ? u"Wi-Fi 6E"_s : u"Wi-Fi 6"_s;
    case AirStandard::Eht:
        return u"Wi-Fi 7"_s;
    }
    return {};
}

QString spanText(const platform::AirSpan& span)
{
    const auto channel = platform::channelOf(span.primaryMhz);
    QString text = channel ? u"%1 in %2"_s.arg(channel->number).arg(bandName(channel->band))
                           : u"%1 MHz"_s.arg(span.primaryMhz);
    if (!span.widthMhz)
        return text;
    text += u", %1 MHz wide"_s.arg(*span.widthMhz);
    if (span.secondCentreMhz)
        return text + u" in two halves"_s;
    if (span.centreMhz)
        text += u" (%1 to %2 MHz)"_s.arg(int(*span.centreMhz) - *span.widthMhz / 2)
                    .arg(int(*span.centreMhz) + *span.widthMhz / 2);
    return text;
}

QString rateText(const platform::AirRate& rate, ChannelBand band)
{
    if (!rate.mbps)
        return {};
    QStringList parts;
    if (rate.standard)
        parts.append(standardText(*rate.standard, band));
    if (rate.streams)
        parts.append(*rate.streams == 1 ? u"1 stream"_s : u"%1 streams"_s.arg(*rate.streams));
    if (rate.widthMhz)
        parts.append(u"%1 MHz"_s.arg(*rate.widthMhz));
    if (rate.mcs)
        parts.append(u"MCS %1"_s.arg(*rate.mcs));
    if (rate.guardIntervalUs)
        parts.append(u"guard interval %1 µs"_s.arg(*rate.guardIntervalUs, 0, 'f', 1));
    const QString text = numberText(*rate.mbps) + u" Mbit/s"_s;
    return parts.isEmpty() ? text : u"%1 (%2)"_s.arg(text, parts.join(u", "_s));
}

QString securityText(const std::optional<AirSecurity>& security)
{
    if (!security)
        return {};
    QStringList ways;
    for (const auto& [way, name] :
        {std::pair(&AirSecurity::wpa, u"WPA (outdated)"_s), {&AirSecurity::wpa2, u"WPA2"_s},
            {&AirSecurity::wpa3, u"WPA3"_s}, {&AirSecurity::enterprise, u"an account (802.1X)"_s},
            {&AirSecurity::enterprise192, u"an account with 192 bits (WPA3)"_s},
            {&AirSecurity::owe, u"encryption without a password (OWE)"_s},
            {&AirSecurity::other, u"a way that is not known"_s}}) {
        if ((*security).*way)
            ways.append(name);
    }
    if (!ways.isEmpty())
        return ways.join(u" or "_s);
    return security->wep ? u"WEP (broken)"_s : u"open, nothing is encrypted"_s;
}

QStringList offerTexts(const platform::AirNetwork& network)
{
    QStringList offers;
    if (network.offersNeighbours)
        offers.append(u"neighbour reports (802.11k)"_s);
    if (network.offersTransition)
        offers.append(u"advice to move (802.11v)"_s);
    if (network.offersFastTransition)
        offers.append(u"fast moves (802.11r)"_s);
    return offers;
}

QString stateText(platform::AirAdapter::State state)
{
    using State = platform::AirAdapter::State;
    switch (state) {
    case State::KeptLink:
        return u"its link is the one in use"_s;
    case State::CarriesRoute:
        return u"its link carries the default route"_s;
    case State::Linked:
        return u"it has a link"_s;
    case State::SigningIn:
        return u"it signs in"_s;
    case State::On:
        return u"it is on and has no link"_s;
    case State::Off:
        return u"it is off"_s;
    }
    return {};
}

} // namespace netvane::wifi
