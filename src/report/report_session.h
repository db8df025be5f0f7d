#pragma once

#include "base/clock.h"
#include "report/report_options.h"

#include <QObject>

#include <memory>

namespace netvane::platform {
struct Platform;
} // namespace netvane::platform
namespace netvane::diagnostics {
class SpeedTestService;
} // namespace netvane::diagnostics
namespace netvane::insights {
struct ReportInputs;
} // namespace netvane::insights
namespace netvane::probes {
class DNSService;
class NetworkUtils;
class PingService;
} // namespace netvane::probes
namespace netvane::wifi {
class WiFiService;
} // namespace netvane::wifi

namespace netvane::report {

/// Takes the readings for one report with the services of the program: the link once, the router
/// and the internet for some rounds, one lookup of a name. Nothing is changed, and nothing but the
/// settings file is read from the disk. Main thread.
class ReportSession : public QObject {
    Q_OBJECT

public:
    /// Rounds of probes that make a report unless a duration is asked for.
    static constexpr size_t kRounds = 5;

    /// `platform` outlives the session.
    ReportSession(platform::Platform& platform, const ReportOptions& options);
    ~ReportSession() override;

    void start();
    /// What is known by now.
    insights::ReportInputs readings() const;

Q_SIGNALS:
    /// A word for whoever waits.
    void progress(const QString& text);
    void finished();

private:
    void beginProbes(const std::optional<QString>& gateway);
    void check();
    bool isSampled() const;
    void sampled();
    void finish();

    platform::Platform& m_platform;
    const ReportOptions m_options;
    std::unique_ptr<probes::NetworkUtils> m_networkUtils;
    std::unique_ptr<wifi::WiFiService> m_wifiService;
    std::unique_ptr<probes::PingService> m_routerPingService; ///< none without a router
    std::unique_ptr<probes::PingService> m_internetPingService;
    std::unique_ptr<probes::DNSService> m_dnsService;
    std::unique_ptr<diagnostics::SpeedTestService> m_speedTestService;
    std::unique_ptr<base::Timer> m_limit;
    bool m_hasLink = false;
    bool m_isSampled = false;
};

} // namespace netvane::report
