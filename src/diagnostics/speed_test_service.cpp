#include "diagnostics/speed_test_service.h"

#include "base/log.h"
#include "base/publish.h"
#include "diagnostics/speed_test_json.h"

#include <QUrlQuery>

using namespace Qt::Literals::StringLiterals;

namespace netvane::diagnostics {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.diagnostics")

QUrl withPath(QUrl server, const QString& path)
{
    server.setPath(path);
    return server;
}

std::optional<QString> encoded(const std::vector<SpeedTestResult>& results)
{
    auto text = encodeSpeedTests(results);
    if (text)
        return std::move(text.value());
    base::log(logCategory(), u"SpeedTestService: Failed to save history: "_s + text.failure().text);
    return {};
}

} // namespace

std::optional<double> megabitsPerSecond(qint64 bytes, std::chrono::steady_clock::duration elapsed)
{
    const double seconds = std::chrono::duration<double>(elapsed).count();
    if (!(seconds > 0))
        return {};
    return double(bytes) * 8 / (seconds * 1'000'000);
}

SpeedTestService::SpeedTestService(platform::HttpClient& http, platform::UserDefaults& defaults,
    base::Clock& clock, const QUrl& server)
    : m_http(http)
    , m_defaults(defaults)
    , m_clock(clock)
    , m_downloadURL(withPath(server, kSpeedTestDownloadPath))
    , m_uploadURL(withPath(server, kSpeedTestUploadPath))
{
    loadHistory();
}

SpeedTestService::~SpeedTestService() = default;

void SpeedTestService::runSpeedTest(probes::PingService* routerPingService)
{
    if (m_isRunning)
        return;
    m_routerPingService = routerPingService;
    m_underWay = {.pingBefore = routerPing()};
    setRunning(true);
    runDownloadTest();
}

void SpeedTestService::cancelTest()
{
    m_downloadTask.reset();
    m_uploadTask.reset();
    setRunning(false);
}

void SpeedTestService::runDownloadTest()
{
    QUrl url = m_downloadURL;
    url.setQuery(QUrlQuery {{u"bytes"_s, QString::number(testSizeBytes)}});
    const auto start = m_clock.monotonicNow();
    m_downloadTask = std::make_unique<QObject>();
    m_http.send({.url = url,
                    .bodyLimit = patience * testSizeBytes,
                    .keepsBody = false,
                    .keepsConnection = true, // for the upload
                    .silenceLimit = requestTimeout,
                    .notice = [this] { askRouter(); },
                    .noticeBytes = loadedBytes},
        m_downloadTask.get(),
        [this, start](const platform::HttpAnswer& answer) { downloadEnded(start, answer); });
}

void SpeedTestService::downloadEnded(Start start, const platform::HttpAnswer& answer)
{
    m_downloadTask.reset();
    if (answer.errorText)
        base::log(logCategory(), u"SpeedTestService: Download test error: "_s + *answer.errorText);
    else if (answer.receivedBytes > 0)
        m_underWay.downloadSpeed = megabitsPerSecond(answer.receivedBytes, answer.endedAt - start);
    m_problem.clear();
    if (!m_underWay.downloadSpeed)
        m_problem = u"The download failed: "_s + answer.errorText.value_or(u"nothing came"_s);
    m_underWay.pingDuring = routerPing();
    runUploadTest();
}

void SpeedTestService::runUploadTest()
{
    const auto start = m_clock.monotonicNow();
    m_uploadTask = std::make_unique<QObject>();
    m_http.send({.url = m_uploadURL,
                    .uploadSize = testSizeBytes,
                    .bodyLimit = patience * testSizeBytes,
                    .keepsBody = false,
                    .silenceLimit = requestTimeout},
        m_uploadTask.get(),
        [this, start](const platform::HttpAnswer& answer) { uploadEnded(start, answer); });
}

void SpeedTestService::uploadEnded(Start start, const platform::HttpAnswer& answer)
{
    m_uploadTask.reset();
    if (answer.errorText) {
        base::log(logCategory(), u"SpeedTestService: Upload test error: "_s + *answer.errorText);
        m_problem
            = (m_underWay.downloadSpeed ? u"The upload failed: "_s : u"The speed test failed: "_s)
            + *answer.errorText;
    } else
        m_underWay.uploadSpeed = megabitsPerSecond(testSizeBytes, answer.endedAt - start);
    m_underWay.pingAfter = routerPing();
    if (!m_underWay.pingDuring)
        m_underWay.pingDuring = m_underWay.pingAfter;
    publish();
}

void SpeedTestService::publish()
{
    m_underWay.id = QUuid::createUuid();
    m_underWay.timestamp = std::chrono::floor<std::chrono::microseconds>(m_clock.now());
    const SpeedTestResult result = m_underWay;
    m_result = result;
    Q_EMIT resultChanged();
    setRunning(false);
    addToHistory(result);
}

/// Its own next probe may come only after the download.
void SpeedTestService::askRouter()
{
    if (m_routerPingService)
        m_routerPingService->probeAtOnce();
}

std::optional<double> SpeedTestService::routerPing() const
{
    if (!m_routerPingService || !m_routerPingService->currentMetrics())
        return {};
    return m_routerPingService->currentMetrics()->ping;
}

void SpeedTestService::addToHistory(const SpeedTestResult& result)
{
    std::vector<SpeedTestResult> history {result};
    history.insert(history.end(), m_history.begin(), m_history.end());
    if (history.size() > maxHistoryCount)
        history.resize(maxHistoryCount);
    setHistory(std::move(history));
    // The other program may have stored tests since the start of this one.
    if (encoded({result}))
        m_defaults.editText(historyKey, [result](const std::optional<QString>& stored) {
            return withSpeedTest(result, stored, maxHistoryCount);
        });
}

void SpeedTestService::saveHistory()
{
    if (const auto text = encoded(m_history))
        m_defaults.setText(historyKey, *text);
}

void SpeedTestService::loadHistory()
{
    const auto text = m_defaults.text(historyKey);
    if (!text)
        return;
    auto history = decodeSpeedTests(*text, maxHistoryCount);
    if (history) {
        m_history = std::move(history.value());
        return;
    }
    base::log(
        logCategory(), u"SpeedTestService: Failed to load history: "_s + history.failure().text);
    m_defaults.remove(historyKey);
}

void SpeedTestService::setHistory(std::vector<SpeedTestResult> history)
{
    base::publish(*this, m_history, std::move(history), &SpeedTestService::historyChanged);
}

void SpeedTestService::setRunning(bool isRunning)
{
    base::publish(*this, m_isRunning, isRunning, &SpeedTestService::isRunningChanged);
}

} // namespace netvane::diagnostics
