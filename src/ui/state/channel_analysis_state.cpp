#include "ui/state/channel_analysis_state.h"

#include "diagnostics/channel_analysis_service.h"
#include "platform/platform.h"
#include "services/services.h"
#include "wifi/location_permission_service.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

ChannelAnalysisState::ChannelAnalysisState(const services::Services& services)
    : m_services(services)
    , m_times(*services.platform.clock, [this] { refresh(); })
{
    using Service = diagnostics::ChannelAnalysisService;
    const auto* service = services.channelAnalysisService.get();
    for (const auto change : {&Service::nearbyNetworksChanged, &Service::channelUtilizationChanged,
             &Service::isScanningChanged, &Service::lastScanTimeChanged, &Service::problemChanged})
        connect(service, change, this, &ChannelAnalysisState::refresh);
    connect(service, &Service::isScanningChanged, this, &ChannelAnalysisState::readCurrentChannel);
    connect(services.locationPermissionService.get(),
        &wifi::LocationPermissionService::isAuthorizedChanged, this,
        &ChannelAnalysisState::refresh);
    refresh();
}

void ChannelAnalysisState::setShown(bool isShown)
{
    m_times.setShown(isShown);
    readCurrentChannel();
}

void ChannelAnalysisState::readCurrentChannel()
{
    if (!m_times.isShown())
        return;
    m_services.platform.networkScanner->readCurrentChannel(
        this, [this](const std::optional<platform::WiFiChannel>& channel) {
            m_currentChannel = channel ? std::optional(channel->number) : std::nullopt;
            refresh();
        });
}

void ChannelAnalysisState::scan()
{
    m_services.channelAnalysisService->scanNetworks();
}

void ChannelAnalysisState::refresh()
{
    Shown current = shown();
    if (m_shown != current) {
        const Shown previous = std::exchange(m_shown, std::move(current));
        Q_EMIT changed();
        // The chart is laid out anew only for other bars.
        if (previous.bars != m_shown.bars)
            Q_EMIT barsChanged();
    }
    if (const auto& time = m_services.channelAnalysisService->lastScanTime())
        m_times.follow({*time});
}

ChannelAnalysisState::Shown ChannelAnalysisState::shown() const
{
    const auto& service = *m_services.channelAnalysisService;
    Shown shown;
    shown.isScanning = service.isScanning();
    if (!m_services.locationPermissionService->isAuthorized())
        shown.body = PermissionNeeded;
    else if (!service.nearbyNetworks().empty() || shown.isScanning)
        shown.body = Results;
    for (const auto& [channel, count] : service.channelUtilization())
        shown.bars.append({QString::number(channel), count, channel == m_currentChannel});
    shown.currentChannel = m_currentChannel;
    if (service.recommendedChannel() != m_currentChannel)
        shown.recommendedChannel = service.recommendedChannel();
    if (shown.body != PermissionNeeded)
        shown.problem = service.problem();
    if (const auto& time = service.lastScanTime())
        shown.lastScan = u"Last scan: "_s + m_times.text(*time);
    return shown;
}

QString ChannelAnalysisState::chartSummary() const
{
    QStringList channels;
    for (const auto& bar : m_shown.bars) {
        channels.append(
            u"Channel %1%2: %3 %4"_s.arg(bar.label, bar.isCurrent ? u" (current)"_s : QString(),
                QString::number(bar.count), bar.count == 1 ? u"network"_s : u"networks"_s));
    }
    return channels.join(u", "_s);
}

} // namespace netvane::ui
