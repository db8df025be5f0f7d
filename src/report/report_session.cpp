#include "report/report_session.h"

#include "diagnostics/speed_test_service.h"
#include "platform/platform.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "wifi/wifi_service.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::report {
namespace {

/// The last round may time out, and what came of it is published half a second late.
constexpr std::chrono::milliseconds kSlack = probes::PingService::probeTimeout + 1s;

} // namespace

ReportSession::ReportSession(platform::Platform& platform, const ReportOptions& options)
    : m_options(options)
    , m_services(platform)
{
}

ReportSession::~ReportSession() = default;

void ReportSession::start()
{
    m_services.makeForReport();
    connect(m_services.wifiService.get(), &wifi::WiFiService::passFinished, this, [this] {
        m_services.wifiService->stopMonitoring();
        m_hasLink = true;
        check();
    });
    m_services.dnsService->performLookup();
    m_services.networkUtils->followDefaultGateway(*m_services.platform.routeMonitor, this,
        [this](const std::optional<QString>& address) { followGateway(address); });
    std::chrono::milliseconds limit = probes::PingService::pingInterval * int(kRounds - 1) + kSlack;
    if (m_options.duration)
        limit = *m_options.duration;
    m_limit = m_services.platform.clock->after(limit, [this] { sampled(); });
}

void ReportSession::followGateway(const std::optional<QString>& gateway)
{
    m_services.makeProbes(gateway);
    if (gateway)
        m_services.routerPingService->setTargetHost(*gateway);
    for (auto* probe : {m_services.routerPingService.get(), m_services.internetPingService.get()}) {
        if (!probe)
            continue;
        connect(probe, &probes::PingService::currentMetricsChanged, this, &ReportSession::check,
            Qt::UniqueConnection);
        probe->start();
    }
}

bool ReportSession::isSampled() const
{
    // The first of the metrics was there before any round, and the last one is published later
    // than it is recorded.
    const auto hasRounds = [](const auto& probe) {
        return probe && probe->metrics().size() > kRounds
            && probe->currentMetrics() == probe->metrics().back();
    };
    return m_hasLink && hasRounds(m_services.internetPingService)
        && (!m_services.routerPingService || hasRounds(m_services.routerPingService));
}

void ReportSession::check()
{
    if (m_isSampled)
        return;
    if (const auto& probe = m_services.internetPingService)
        Q_EMIT progress(u"Sampling, round %1"_s.arg(probe->pingCount()));
    if (!m_options.duration && isSampled())
        sampled();
}

void ReportSession::sampled()
{
    if (std::exchange(m_isSampled, true))
        return;
    m_limit.reset();
    if (!m_options.speedTest) {
        finish();
        return;
    }
    Q_EMIT progress(u"Testing the speed"_s);
    m_services.makeSpeedTest();
    auto* speedTest = m_services.speedTestService.get();
    connect(speedTest, &diagnostics::SpeedTestService::isRunningChanged, this, [this, speedTest] {
        if (!speedTest->isRunning())
            finish();
    });
    speedTest->runSpeedTest(m_services.routerPingService.get());
}

void ReportSession::finish()
{
    m_services.stop();
    Q_EMIT finished();
}

} // namespace netvane::report
