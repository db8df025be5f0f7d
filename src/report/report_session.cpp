#include "report/report_session.h"

#include "diagnostics/speed_test_service.h"
#include "insights/report_text.h"
#include "platform/platform.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "wifi/wifi_service.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::report {
namespace {

/// The last round may time out, and what came of it is published half a second late.
constexpr std::chrono::milliseconds kSlack = probes::PingService::probeTimeout + 1s;

} // namespace

ReportSession::ReportSession(platform::Platform& platform, const ReportOptions& options)
    : m_platform(platform)
    , m_options(options)
{
}

ReportSession::~ReportSession() = default;

void ReportSession::start()
{
    auto& clock = *m_platform.clock;
    m_networkUtils = std::make_unique<probes::NetworkUtils>(
        *m_platform.networkConfiguration, m_platform.queues->userInitiated);
    m_wifiService = std::make_unique<wifi::WiFiService>(
        m_platform.wifiClient, clock, m_platform.queues->userInitiated);
    connect(m_wifiService.get(), &wifi::WiFiService::passFinished, this, [this] {
        m_wifiService->stopMonitoring();
        m_hasLink = true;
        check();
    });
    m_dnsService = std::make_unique<probes::DNSService>(
        *m_networkUtils, m_platform.resolver, clock, probes::kDnsTestHost);
    m_dnsService->performLookup();
    m_networkUtils->getDefaultGateway(
        this, [this](const std::optional<QString>& address) { beginProbes(address); });
    std::chrono::milliseconds limit = probes::PingService::pingInterval * int(kRounds - 1) + kSlack;
    if (m_options.duration)
        limit = *m_options.duration;
    m_limit = clock.after(limit, [this] { sampled(); });
}

void ReportSession::beginProbes(const std::optional<QString>& gateway)
{
    const auto probe = [this](const QString& host, const QString& name) {
        auto service = std::make_unique<probes::PingService>(
            host, name, *m_platform.clock, *m_platform.connections);
        connect(service.get(), &probes::PingService::currentMetricsChanged, this,
            &ReportSession::check);
        service->start();
        return service;
    };
    if (gateway)
        m_routerPingService = probe(*gateway, u"router"_s);
    m_internetPingService = probe(probes::kInternetTarget, u"internet"_s);
}

bool ReportSession::isSampled() const
{
    const auto hasRounds
        = [](const probes::PingService& service) { return service.metrics().size() >= kRounds; };
    return m_hasLink && m_internetPingService && hasRounds(*m_internetPingService)
        && (!m_routerPingService || hasRounds(*m_routerPingService));
}

void ReportSession::check()
{
    if (m_isSampled)
        return;
    if (m_internetPingService)
        Q_EMIT progress(u"Sampling, round %1"_s.arg(m_internetPingService->pingCount()));
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
    m_speedTestService = std::make_unique<diagnostics::SpeedTestService>(*m_platform.httpTransfers,
        *m_platform.userDefaults, *m_platform.clock, diagnostics::kSpeedTestServer);
    connect(
        m_speedTestService.get(), &diagnostics::SpeedTestService::isRunningChanged, this, [this] {
            if (!m_speedTestService->isRunning())
                finish();
        });
    m_speedTestService->runSpeedTest(m_routerPingService.get());
}

void ReportSession::finish()
{
    for (auto* probe : {m_routerPingService.get(), m_internetPingService.get()}) {
        if (probe)
            probe->stop();
    }
    Q_EMIT finished();
}

insights::ReportInputs ReportSession::readings() const
{
    insights::ReportInputs input;
    if (m_wifiService)
        input.wifi = m_wifiService->currentWiFi();
    if (m_routerPingService)
        input.router = m_routerPingService->currentMetrics();
    if (m_internetPingService)
        input.internet = m_internetPingService->currentMetrics();
    if (m_dnsService) {
        input.dnsLookupTime = m_dnsService->lookupTime();
        input.dnsServer = m_dnsService->dnsServer();
    }
    if (m_speedTestService)
        input.speedTest = m_speedTestService->result();
    return input;
}

} // namespace netvane::report
