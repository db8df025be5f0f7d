#include "ui/state/speed_test_state.h"

#include "diagnostics/speed_test_service.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

QVariant speedText(const std::optional<double>& megabitsPerSecond, const QString& unit)
{
    if (!megabitsPerSecond)
        return {};
    return QString::number(*megabitsPerSecond, 'f', 1) + unit;
}

QVariant speedText(const std::optional<diagnostics::SpeedTestResult>& result,
    std::optional<double> diagnostics::SpeedTestResult::*speed)
{
    return result ? speedText((*result).*speed, u" Mbps"_s) : QVariant();
}

} // namespace

QString RecentSpeedTest::summary() const
{
    QString text = elapsed;
    if (hasFailed())
        text += u", failed"_s;
    if (download.isValid())
        text += u", download %1 Mbps"_s.arg(download.toString());
    if (upload.isValid())
        text += u", upload %1 Mbps"_s.arg(upload.toString());
    return text;
}

SpeedTestState::SpeedTestState(diagnostics::SpeedTestService& service,
    probes::PingService* routerPingService, base::Clock& clock)
    : m_service(service)
    , m_routerPingService(routerPingService)
    , m_times(clock, [this] { refreshRecentTests(); })
{
    using Service = diagnostics::SpeedTestService;
    connect(&m_service, &Service::isRunningChanged, this, &SpeedTestState::isRunningChanged);
    connect(&m_service, &Service::resultChanged, this, &SpeedTestState::resultChanged);
    connect(&m_service, &Service::historyChanged, this, &SpeedTestState::refreshRecentTests);
    refreshRecentTests();
}

bool SpeedTestState::isRunning() const
{
    return m_service.isRunning();
}

bool SpeedTestState::hasResult() const
{
    return m_service.result().has_value();
}

QVariant SpeedTestState::downloadSpeed() const
{
    return speedText(m_service.result(), &diagnostics::SpeedTestResult::downloadSpeed);
}

QVariant SpeedTestState::uploadSpeed() const
{
    return speedText(m_service.result(), &diagnostics::SpeedTestResult::uploadSpeed);
}

QVariant SpeedTestState::lagMessage() const
{
    const auto& result = m_service.result();
    return result ? orUndefined(result->lagUnderLoadMessage()) : QVariant();
}

QString SpeedTestState::note() const
{
    return isRunning() ? QString() : m_service.problem();
}

void SpeedTestState::runTest()
{
    m_service.runSpeedTest(m_routerPingService);
}

void SpeedTestState::clearHistory()
{
    m_service.setHistory({});
    m_service.saveHistory();
}

void SpeedTestState::refreshRecentTests()
{
    const auto& history = m_service.history();
    const size_t count = std::min(history.size(), maxRecentTests);
    QList<RecentSpeedTest> tests;
    std::vector<RelativeTimes::TimePoint> times;
    for (size_t index = 0; index < count; ++index) {
        const auto& result = history[index];
        tests.append({m_times.text(result.timestamp), speedText(result.downloadSpeed, {}),
            speedText(result.uploadSpeed, {})});
        times.push_back(result.timestamp);
    }
    if (m_recentTests != tests) {
        m_recentTests = std::move(tests);
        Q_EMIT recentTestsChanged();
    }
    m_times.follow(times);
}

} // namespace netvane::ui
