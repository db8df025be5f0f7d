#include "report/verdict_session.h"

#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "verdict/verdict_service.h"

using namespace std::chrono_literals;

namespace netvane::report {
namespace {

constexpr std::chrono::seconds kDuration = 15s;
constexpr int kFewestRounds = 4; // by then a loss shows

} // namespace

VerdictSession::VerdictSession(platform::Platform& platform, const ReportOptions& options)
    : m_options(options)
    , m_services(platform)
{
}

VerdictSession::~VerdictSession() = default;

void VerdictSession::start()
{
    m_services.makeForReport();
    m_services.makeVerdict();
    const auto& verdicts = *m_services.verdictService;
    connect(&verdicts, &verdict::VerdictService::verdictChanged, this, &VerdictSession::changed);
    const bool isWatching = m_options.outlet == Outlet::Watch;
    if (!isWatching)
        connect(&verdicts, &verdict::VerdictService::evidenceChanged, this,
            &VerdictSession::finishIfCertain);
    m_services.networkUtils->followDefaultGateway(*m_services.platform.routeMonitor, this,
        [this](const std::optional<QString>& gateway) { followGateway(gateway); });
    auto& clock = *m_services.platform.clock;
    if (m_options.duration || !isWatching)
        m_limit = clock.after(m_options.duration.value_or(kDuration), [this] { finish(); });
    if (m_options.interval)
        m_interval = clock.repeat(*m_options.interval, [this] { Q_EMIT changed(); });
}

void VerdictSession::followGateway(const std::optional<QString>& gateway)
{
    m_services.makeProbes(gateway);
    if (gateway) {
        m_services.routerPingService->setTargetHost(*gateway);
        m_services.routerPingService->start();
    }
    m_services.internetPingService->start();
    if (std::exchange(m_isStarted, true))
        return;
    m_services.dnsService->start();
    m_services.captivePortalService->start();
}

void VerdictSession::finishIfCertain()
{
    constexpr double kCertain = 0.8;
    const auto& service = verdicts();
    if (!m_options.duration && service.rounds() >= kFewestRounds
        && service.verdict().certainty >= kCertain)
        finish();
}

void VerdictSession::finish()
{
    if (std::exchange(m_isOver, true))
        return;
    m_services.stop();
    Q_EMIT finished();
}

} // namespace netvane::report
