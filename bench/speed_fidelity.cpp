// How near the speed test's figure comes to that of curl for the same bytes over the same link in
// the same run, how much memory a test takes on top, and for how long it ever holds up the main
// thread. `run_speed_fidelity` makes the server and the link.

#include "base/log.h"
#include "base/system_clock.h"
#include "diagnostics/speed_test_service.h"
#include "figure.h"
#include "net/web/curl_http_client.h"
#include "simulated/desktop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace netvane;
using namespace std::chrono_literals;
using diagnostics::SpeedTestService;

namespace {

constexpr double kMemoryBoundMb = 12;
constexpr double kBlockedBoundMs = 5;
constexpr auto kTick = 1ms;

/// What is measured, and against what.
struct Plan {
    QString name;
    QUrl server;
    QString authority; ///< a file with the certificate to trust
    int runs = 0;
    double lowest = 0; ///< of curl's figure
    double highest = 0;
};

/// A line of /proc/self/status, in MB.
double statusMb(const QByteArray& name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name + ':'))
            return line.simplified().split(' ').value(1).toDouble() * 1024 / 1e6;
    }
    return 0;
}

void forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly))
        file.write("5"); // see proc(5)
}

/// What this thread has waited so far for a core that was busy with other threads.
double waitedForCoreMs()
{
    QFile file(QStringLiteral("/proc/thread-self/schedstat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() / 1e6;
}

/// The longest time between two turns of the main thread's event loop, beyond the tick.
class Watchman {
public:
    Watchman()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { tick(); });
        m_timer.start(kTick);
    }
    double longestMs() const { return m_longestMs; }
    /// Without the time in which it could have gone on, had there been a core.
    double longestOfItsOwnMs() const { return m_longestOfItsOwnMs; }

private:
    void tick()
    {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double, std::milli> late = now - m_last - kTick;
        const double waited = waitedForCoreMs();
        m_longestMs = std::max(m_longestMs, late.count());
        m_longestOfItsOwnMs
            = std::max(m_longestOfItsOwnMs, late.count() - (waited - m_waitedBefore));
        m_last = now;
        m_waitedBefore = waited;
    }

    QTimer m_timer;
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
    double m_waitedBefore = waitedForCoreMs();
    double m_longestMs = 0;
    double m_longestOfItsOwnMs = 0;
};

/// curl's figure for a download, or an upload of the file: the bytes over its own time from the
/// start to the end, set-up included.
double curlMbps(const Plan& plan, const QString& path, const QStringList& more = {})
{
    QProcess curl;
    curl.start(QStringLiteral("curl"),
        QStringList {QStringLiteral("--silent"), QStringLiteral("--http1.1"),
            QStringLiteral("--cacert"), plan.authority, QStringLiteral("--output"),
            QStringLiteral("/dev/null"), QStringLiteral("--write-out"),
            QStringLiteral("%{time_total}"), plan.server.toString() + path}
            + more);
    curl.waitForFinished(-1);
    const double seconds = curl.readAllStandardOutput().toDouble();
    if (curl.exitCode() != 0 || seconds <= 0)
        qFatal("curl failed");
    return double(SpeedTestService::testSizeBytes) * 8 / 1e6 / seconds;
}

class Bench {
public:
    explicit Bench(Plan plan)
        : m_plan(std::move(plan))
    {
    }

    bool exec()
    {
        useTls();
        std::vector<double> ours;
        std::vector<double> oursUp;
        std::vector<double> curls;
        for (int run = 0; run < m_plan.runs; ++run) {
            const auto result = runTest();
            ours.push_back(result.downloadSpeed.value_or(0));
            oursUp.push_back(result.uploadSpeed.value_or(0));
            curls.push_back(curlMbps(m_plan, QStringLiteral("/__down?bytes=5000000")));
        }
        const double ratio = bench::median(ours) / bench::median(curls);
        std::printf("  %-12s %9.1f %9.1f %7.3f   %.2f to %.2f   %8.1f\n", qPrintable(m_plan.name),
            bench::median(ours), bench::median(curls), ratio, m_plan.lowest, m_plan.highest,
            bench::median(oursUp));
        std::printf("  %-12s memory +%.1f MB (at most %.0f), main thread held up %.1f ms (at most "
                    "%.0f), %.1f with waits for a core\n",
            "", m_memoryMb, kMemoryBoundMb, m_blockedMs, kBlockedBoundMs, m_lateMs);
        bench::record({.name = QStringLiteral("download, ") + m_plan.name,
            .unit = QStringLiteral("Mbps"),
            .values = ours,
            .rival = QStringLiteral("curl"),
            .rivalValues = curls});
        return ratio >= m_plan.lowest && ratio <= m_plan.highest && m_memoryMb < kMemoryBoundMb
            && m_blockedMs < kBlockedBoundMs;
    }

private:
    /// As the program did long before the user asks for a test: each fetch of a page needs it.
    void useTls()
    {
        net::CurlHttpClient client(m_clock, {}, m_plan.authority);
        QEventLoop loop;
        client.send({.url = m_plan.server, .bodyLimit = 1}, &loop,
            [&loop](const platform::HttpAnswer&) { loop.quit(); });
        loop.exec();
    }

    diagnostics::SpeedTestResult runTest()
    {
        forgetPeak();
        const double before = statusMb("VmRSS");
        const Watchman watchman;
        QEventLoop loop;
        QObject::connect(&m_service, &SpeedTestService::resultChanged, &loop, &QEventLoop::quit);
        m_service.runSpeedTest(nullptr);
        loop.exec();
        m_blockedMs = std::max(m_blockedMs, watchman.longestOfItsOwnMs());
        m_lateMs = std::max(m_lateMs, watchman.longestMs());
        m_memoryMb = std::max(m_memoryMb, statusMb("VmHWM") - before);
        return *m_service.result();
    }

    const Plan m_plan;
    base::SystemClock m_clock;
    net::CurlHttpClient m_http {m_clock, {}, m_plan.authority};
    simulated::UserDefaults m_defaults;
    SpeedTestService m_service {m_http, m_defaults, m_clock, m_plan.server};
    double m_memoryMb = 0;
    double m_blockedMs = 0;
    double m_lateMs = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 7) {
        std::fputs("usage: speed_fidelity NAME URL AUTHORITY RUNS LOWEST HIGHEST "
                   "(run_speed_fidelity calls it)\n",
            stderr);
        return 2;
    }
    Bench bench({.name = arguments[1],
        .server = QUrl(arguments[2]),
        .authority = arguments[3],
        .runs = arguments[4].toInt(),
        .lowest = arguments[5].toDouble(),
        .highest = arguments[6].toDouble()});
    return bench.exec() ? 0 : 1;
}
