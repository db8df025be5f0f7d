#pragma once

// This room holds what runs only when the user starts it: the speed test with the latency under
// load, the scan of the channels, and the trace of the way to a host. Each service publishes its
// progress and its result.

#include "base/clock.h"
#include "diagnostics/speed_test_result.h"
#include "platform/http_client.h"
#include "platform/user_defaults.h"
#include "probes/ping_service.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

#include <memory>
#include <vector>

namespace netvane::diagnostics {

/// The public service that speed tests are run against: it sends as many bytes as it is asked for,
/// and takes what it is sent.
inline const QUrl kSpeedTestServer = QUrl(QStringLiteral("https://speed.cloudflare.com"));
inline const QString kSpeedTestDownloadPath = QStringLiteral("/__down");
inline const QString kSpeedTestUploadPath = QStringLiteral("/__up");

/// On request times a download and then an upload, and tells how far the router's latency rose
/// meanwhile. The last tests survive restarts. Main thread.
class SpeedTestService : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 testSizeBytes = 5000000;
    static constexpr size_t maxHistoryCount = 20;
    static constexpr std::chrono::milliseconds requestTimeout {60000}; ///< without any progress
    /// A server that sends more than so many times what it was asked for fails the test.
    static constexpr qint64 patience = 4;
    /// When so much of the download has come, the router is asked how long it takes now: on a slow
    /// link there is a queue by then, on a fast one its answer still comes before the end.
    static constexpr qint64 loadedBytes = testSizeBytes / 8;
    inline static const QString historyKey = QStringLiteral("speedTestHistory");

    /// All outlive this. Loads the history; nothing else happens before a test is run. `server` is
    /// where the two paths are.
    SpeedTestService(platform::HttpClient& http, platform::UserDefaults& defaults,
        base::Clock& clock, const QUrl& server);
    ~SpeedTestService() override;

    /// The latest test that came to its end since the start.
    const std::optional<SpeedTestResult>& result() const { return m_result; }
    /// What the latest test could not measure and why, in a sentence for the user; empty when it
    /// measured everything. In part the words of libcurl or of a server. Changes with `result`.
    const QString& problem() const { return m_problem; }
    bool isRunning() const { return m_isRunning; }
    /// Newest first, at most `maxHistoryCount`.
    const std::vector<SpeedTestResult>& history() const { return m_history; }
    /// Does not store it; see `saveHistory`.
    void setHistory(std::vector<SpeedTestResult> history);
    void saveHistory();

    /// Ignored while a test runs. Without a probe the result tells no round trips.
    void runSpeedTest(probes::PingService* routerPingService);
    /// Ends the test at once; it leaves no result.
    void cancelTest();

    const QUrl& downloadURL() const { return m_downloadURL; }
    const QUrl& uploadURL() const { return m_uploadURL; }

Q_SIGNALS:
    void resultChanged();
    void isRunningChanged();
    void historyChanged();

private:
    using Start = std::chrono::steady_clock::time_point;

    void runDownloadTest();
    void downloadEnded(Start start, const platform::HttpAnswer& answer);
    void runUploadTest();
    void uploadEnded(Start start, const platform::HttpAnswer& answer);
    void publish();
    void askRouter();
    std::optional<double> routerPing() const;
    void addToHistory(const SpeedTestResult& result);
    void loadHistory();
    void setRunning(bool isRunning);

    platform::HttpClient& m_http;
    platform::UserDefaults& m_defaults;
    base::Clock& m_clock;
    const QUrl m_downloadURL;
    const QUrl m_uploadURL;
    std::optional<SpeedTestResult> m_result;
    bool m_isRunning = false;
    std::vector<SpeedTestResult> m_history;
    QPointer<probes::PingService> m_routerPingService;
    SpeedTestResult m_underWay; ///< what the running test has found so far
    QString m_problem;
    std::unique_ptr<QObject> m_downloadTask; ///< owns the transfer under way
    std::unique_ptr<QObject> m_uploadTask; ///< likewise
};

/// In Mbps. Absent when no time has passed.
std::optional<double> megabitsPerSecond(qint64 bytes, std::chrono::steady_clock::duration elapsed);

} // namespace netvane::diagnostics
