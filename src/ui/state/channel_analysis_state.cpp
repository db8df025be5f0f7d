#include "ui/state/channel_analysis_state.h"

#include "diagnostics/channel_analysis_service.h"
#include "platform/url_opener.h"
#include "wifi/location_permission_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using Utilization = diagnostics::ChannelAnalysisService::ChannelUtilization;

QList<ChartBar> chartBars(const Utilization& networksByChannel, std::optional<int> currentChannel)
{
    QList<ChartBar> bars;
    for (const auto& [channel, count] : networksByChannel)
        bars.append({QString::number(channel), count,
            channel == currentChannel ? accent::Blue : accent::LightBlue});
    return bars;
}

template <typename Value>
QVariant orUndefined(const std::optional<Value>& value)
{
    return value ? QVariant(*value) : QVariant();
}

} // namespace

ChannelAnalysisState::ChannelAnalysisState(diagnostics::ChannelAnalysisService& service,
    const wifi::LocationPermissionService& permission, platform::NetworkScanner& scanner,
    platform::UrlOpener& opener, base::Clock& clock)
    : m_service(service)
    , m_permission(permission)
    , m_scanner(scanner)
    , m_opener(opener)
    , m_times(clock, [this] { refresh(); })
{
    using Service = diagnostics::ChannelAnalysisService;
    for (const auto change : {&Service::nearbyNetworksChanged, &Service::channelUtilizationChanged,
             &Service::isScanningChanged, &Service::lastScanTimeChanged})
        connect(&m_service, change, this, &ChannelAnalysisState::refresh);
    connect(
        &m_service, &Service::isScanningChanged, this, &ChannelAnalysisState::readCurrentChannel);
    connect(&m_permission, &wifi::LocationPermissionService::isAuthorizedChanged, this,
        &ChannelAnalysisState::refresh);
    refresh();
}

void ChannelAnalysisState::setShown(bool isShown)
{
    if (isShown == m_times.isShown())
        return;
    m_times.setShown(isShown);
    Q_EMIT isShownChanged();
    readCurrentChannel();
}

void ChannelAnalysisState::readCurrentChannel()
{
    if (!isShown())
        return;
    m_scanner.readCurrentChannel(this, [this](const std::optional<platform::WiFiChannel>& channel) {
        m_currentChannel = channel ? std::optional(channel->number) : std::nullopt;
        refresh();
    });
}

void ChannelAnalysisState::scan()
{
    m_service.scanNetworks();
}

void ChannelAnalysisState::openSystemSettings()
{
    m_opener.openUrl(platform::kPrivacySettingsUrl);
}

void ChannelAnalysisState::refresh()
{
    Shown current = shown();
    if (m_shown != current) {
        m_shown = std::move(current);
        Q_EMIT changed();
    }
    if (m_service.lastScanTime())
        m_times.follow({*m_service.lastScanTime()});
}

ChannelAnalysisState::Shown ChannelAnalysisState::shown() const
{
    Shown shown;
    shown.isScanning = m_service.isScanning();
    if (!m_permission.isAuthorized())
        shown.body = PermissionNeeded;
    else if (!m_service.nearbyNetworks().empty() || shown.isScanning)
        shown.body = Results;
    shown.bars = chartBars(m_service.channelUtilization(), m_currentChannel);
    shown.currentChannel = m_currentChannel;
    if (m_service.recommendedChannel() != m_currentChannel)
        shown.recommendedChannel = m_service.recommendedChannel();
    if (const auto& time = m_service.lastScanTime())
        shown.lastScan = u"Last scan: "_s + m_times.text(*time);
    return shown;
}

QString ChannelAnalysisState::chartSummary() const
{
    QStringList channels;
    for (const auto& bar : m_shown.bars) {
        channels.append(u"Channel %1%2: %3 %4"_s.arg(bar.label,
            bar.accent == accent::Blue ? u" (current)"_s : QString(), QString::number(bar.count),
            bar.count == 1 ? u"network"_s : u"networks"_s));
    }
    return channels.join(u", "_s);
}

QVariant ChannelAnalysisState::currentChannel() const
{
    return orUndefined(m_shown.currentChannel);
}

QVariant ChannelAnalysisState::recommendedChannel() const
{
    return orUndefined(m_shown.recommendedChannel);
}

QVariant ChannelAnalysisState::lastScan() const
{
    return orUndefined(m_shown.lastScan);
}

} // namespace netvane::ui
