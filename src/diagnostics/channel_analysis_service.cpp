#include "diagnostics/channel_analysis_service.h"

#include "base/log.h"
#include "base/publish.h"
#include "wifi/location_permission_service.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::diagnostics {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.diagnostics")

QString sentenceOf(const base::Failure& failure)
{
    return failure.kind == base::FailureKind::NotAllowed
        ? u"The system does not allow this user to scan"_s
        : failure.text;
}

} // namespace

ChannelAnalysisService::ChannelAnalysisService(
    platform::NetworkScanner& scanner, base::Clock& clock)
    : m_scanner(scanner)
    , m_clock(clock)
{
}

void ChannelAnalysisService::scanNetworks()
{
    if (!m_locationPermissionService || !m_locationPermissionService->isAuthorized()) {
        base::log(
            logCategory(), u"ChannelAnalysisService: Location permission required for scanning"_s);
        return;
    }
    if (m_isScanning)
        return;
    setProblem({});
    if (isTooSoon()) {
        setProblem(u"Not scanned again, because the last scan was less than 30 seconds before"_s);
        return;
    }
    setScanning(true);
    performScan();
}

bool ChannelAnalysisService::isTooSoon() const
{
    return m_lastSuccess && m_clock.nowWithSleep() - *m_lastSuccess < maxScanInterval;
}

void ChannelAnalysisService::setProblem(std::optional<QString> problem)
{
    base::publish(*this, m_problem, std::move(problem), &ChannelAnalysisService::problemChanged);
}

void ChannelAnalysisService::performScan()
{
    using Networks = base::Result<std::vector<platform::NearbyNetwork>>;
    m_scanner.scan(this, [this](const Networks& networks) {
        if (networks) {
            processScanResults(networks.value());
            return;
        }
        if (networks.failure().kind != base::FailureKind::NotFound) // there is an interface
            base::log(logCategory(),
                u"ChannelAnalysisService: Scan failed: "_s + networks.failure().text);
        setProblem(sentenceOf(networks.failure()));
        setScanning(false);
    });
}

void ChannelAnalysisService::processScanResults(
    const std::vector<platform::NearbyNetwork>& networks)
{
    base::publish(
        *this, m_nearbyNetworks, networks, &ChannelAnalysisService::nearbyNetworksChanged);
    updateChannelUtilization();
    m_lastSuccess = m_clock.nowWithSleep();
    base::publish(
        *this, m_lastScanTime, m_clock.now(), &ChannelAnalysisService::lastScanTimeChanged);
    setScanning(false);
}

void ChannelAnalysisService::updateChannelUtilization()
{
    ChannelUtilization counts;
    for (const auto& network : m_nearbyNetworks) {
        if (network.channel)
            ++counts[network.channel->number];
    }
    base::publish(*this, m_channelUtilization, std::move(counts),
        &ChannelAnalysisService::channelUtilizationChanged);
}

std::optional<int> ChannelAnalysisService::recommendedChannel() const
{
    const auto least = std::ranges::min_element(
        m_channelUtilization, {}, &ChannelUtilization::value_type::second); // the first of equals
    return least == m_channelUtilization.end() ? std::nullopt : std::optional(least->first);
}

void ChannelAnalysisService::setScanning(bool isScanning)
{
    base::publish(*this, m_isScanning, isScanning, &ChannelAnalysisService::isScanningChanged);
}

} // namespace netvane::diagnostics
