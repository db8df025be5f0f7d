#include "ui/state/network_info_state.h"

#include "ui/state/dashboard_readings.h"
#include "ui/state/signal_accent.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

NetworkInfoState::NetworkInfoState(const DashboardReadings& readings)
    : m_readings(readings)
{
    connect(
        &m_readings, &DashboardReadings::currentWiFiChanged, this, &NetworkInfoState::linkChanged);
    connect(&m_readings, &DashboardReadings::vpnActiveChanged, this, &NetworkInfoState::vpnChanged);
}

bool NetworkInfoState::isConnected() const
{
    return m_readings.currentWiFi() && m_readings.currentWiFi()->signalStrength;
}

bool NetworkInfoState::hasName() const
{
    return isConnected() && m_readings.currentWiFi()->ssid;
}

QString NetworkInfoState::networkName() const
{
    if (!isConnected())
        return {};
    return m_readings.currentWiFi()->ssid.value_or(
        u"Connected (Location permission needed for network name)"_s);
}

QString NetworkInfoState::band() const
{
    return isConnected() ? wifi::displayName(m_readings.currentWiFi()->frequency) : QString();
}

QString NetworkInfoState::signalText() const
{
    if (!isConnected())
        return {};
    return u"%1 dBm"_s.arg(*m_readings.currentWiFi()->signalStrength);
}

Accent NetworkInfoState::signalAccent() const
{
    return isConnected() ? ui::signalAccent(*m_readings.currentWiFi()->signalStrength)
                         : Accent::Red;
}

QString NetworkInfoState::vpnText() const
{
    return m_readings.vpnActive() ? u"VPN active"_s : u"No VPN"_s;
}

QString NetworkInfoState::vpnSymbol() const
{
    return m_readings.vpnActive() ? u"lock.shield.fill"_s : u"lock.open"_s;
}

Accent NetworkInfoState::vpnAccent() const
{
    return m_readings.vpnActive() ? Accent::LightBlue : Accent::Tertiary;
}

} // namespace netvane::ui
