#include "net/curl_http_client.h"

#include "net/http_exchange.h"

#include <QCoreApplication>

#include <csignal>
#include <system_error>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

enum class Limit { OfTime, OfSilence };

/// The main thread's side of an exchange: ends it at the limit, or when this is destroyed.
class Request : public platform::HttpTransfer {
public:
    Request(base::Clock& clock, std::shared_ptr<HttpExchange> exchange, Limit limit,
        std::chrono::milliseconds length)
        : m_clock(clock)
        , m_exchange(std::move(exchange))
        , m_limit(limit)
        , m_length(length)
        , m_start(clock.monotonicNow())
    {
        m_exchange->lastProgress = m_start;
    }
    ~Request() override
    {
        m_exchange->deliver = {};
        m_exchange->cancel();
    }

    /// `deliver` may destroy this.
    void begin(bool hasThread, std::function<void(HttpExchange&)> deliver)
    {
        m_hasThread = hasThread;
        m_exchange->deliver = [this, deliver = std::move(deliver)] {
            m_timer.reset();
            const auto exchange = m_exchange;
            if (m_isLate)
                exchange->errorText = m_limit == Limit::OfTime
                    ? u"The time limit was reached"_s
                    : u"The server was silent for too long"_s;
            deliver(*exchange);
        };
        watch();
    }

private:
    /// The timer is not moved while bytes flow: it looks for progress when it is due.
    void watch()
    {
        const auto from = m_limit == Limit::OfTime ? m_start : m_exchange->lastProgress.load();
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            from + m_length - m_clock.monotonicNow());
        if (left > left.zero()) {
            m_timer = m_clock.after(left, [this] { watch(); });
            return;
        }
        m_isLate = true;
        m_exchange->cancel();
        if (!m_hasThread) {
            m_exchange->endedAt = m_clock.monotonicNow();
            std::exchange(m_exchange->deliver, {})();
        }
    }

    base::Clock& m_clock;
    const std::shared_ptr<HttpExchange> m_exchange;
    const Limit m_limit;
    const std::chrono::milliseconds m_length;
    const std::chrono::steady_clock::time_point m_start;
    std::unique_ptr<base::Timer> m_timer;
    bool m_hasThread = false;
    bool m_isLate = false;
};

/// Ends its request together with the owner of a page.
struct OwnedRequest : QObject {
    using QObject::QObject;
    std::unique_ptr<Request> request;
};

platform::HttpAnswer answerOf(const HttpExchange& exchange)
{
    platform::HttpAnswer answer {.status = exchange.status,
        .truncated = exchange.isTooLong,
        .finalUrl = exchange.url,
        .errorText = exchange.errorText};
    if (!answer.errorText && answer.status >= 400)
        answer.errorText = u"The server answered with status %1"_s.arg(*answer.status);
    if (!answer.errorText && !exchange.body.isEmpty())
        answer.body = exchange.body;
    return answer;
}

platform::TransferOutcome outcomeOf(const HttpExchange& exchange)
{
    platform::TransferOutcome outcome {.receivedBytes = exchange.receivedBytes,
        .endedAt = exchange.endedAt,
        .errorText = exchange.errorText};
    if (exchange.isTooLong)
        outcome.errorText = u"The server sends far more than it was asked for"_s;
    return outcome;
}

/// Signals are for the main thread; SIGPIPE is for nobody.
void blockSignals()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

CurlHttpClient::CurlHttpClient(base::Clock& clock, const QString& authorityFile)
    : m_clock(clock)
    , m_authorityFile(authorityFile.toLocal8Bit())
{
}

CurlHttpClient::~CurlHttpClient()
{
    for (Worker& worker : m_workers) {
        worker.exchange->cancel();
        worker.thread.join();
    }
}

void CurlHttpClient::get(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    auto exchange = std::make_shared<HttpExchange>();
    exchange->url = request.url;
    exchange->bodyLimit = request.bodyLimit;
    exchange->maximumRedirects = request.maximumRedirects;
    exchange->keepsBody = true;
    auto* owned = new OwnedRequest(owner);
    owned->request = std::make_unique<Request>(m_clock, exchange, Limit::OfTime, request.timeLimit);
    owned->request->begin(
        run(exchange), [owned, deliver = std::move(deliver)](const HttpExchange& ended) {
            owned->deleteLater();
            deliver(answerOf(ended));
        });
}

std::unique_ptr<platform::HttpTransfer> CurlHttpClient::start(
    const platform::TransferRequest& request,
    std::function<void(const platform::TransferOutcome&)> deliver)
{
    auto exchange = std::make_shared<HttpExchange>();
    exchange->url = request.url;
    exchange->uploadSize = request.uploadSize;
    exchange->bodyLimit = request.answerLimit;
    auto transfer
        = std::make_unique<Request>(m_clock, exchange, Limit::OfSilence, request.silenceLimit);
    transfer->begin(run(exchange),
        [deliver = std::move(deliver)](const HttpExchange& ended) { deliver(outcomeOf(ended)); });
    return transfer;
}

bool CurlHttpClient::run(const std::shared_ptr<HttpExchange>& exchange)
{
    joinFinished();
    exchange->authorityFile = m_authorityFile;
    const auto work = [exchange, &clock = m_clock] {
        blockSignals();
        runExchange(*exchange, clock);
        const auto deliver = [exchange] {
            if (exchange->deliver)
                std::exchange(exchange->deliver, {})();
        };
        // Nobody waits once there is no application.
        QMetaObject::invokeMethod(QCoreApplication::instance(), deliver, Qt::QueuedConnection);
        exchange->isOver = true;
    };
    try {
        m_workers.push_back({exchange, std::thread(work)});
        return true;
    } catch (const std::system_error&) {
        return false; // the standard library has no other way to say that there are too many
    }
}

void CurlHttpClient::joinFinished()
{
    std::erase_if(m_workers, [](Worker& worker) {
        if (!worker.exchange->isOver)
            return false;
        worker.thread.join();
        return true;
    });
}

} // namespace netvane::net
