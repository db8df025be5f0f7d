#include "net/web/curl_http_client.h"

#include "net/web/http_exchange.h"

#include <QObject>

#include <algorithm>
#include <csignal>
#include <system_error>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::net {
namespace {

constexpr auto kProxyAge = 5min; // asking at each check would wake up three processes

/// The main thread's side of an exchange: ends it at a limit, or when its owner goes.
class Request : public QObject {
public:
    Request(QObject* owner, base::Clock& clock, std::shared_ptr<HttpExchange> exchange)
        : QObject(owner)
        , m_clock(clock)
        , m_exchange(std::move(exchange))
        , m_start(clock.monotonicNow())
    {
    }
    ~Request() override
    {
        m_exchange->deliver = {};
        m_exchange->notice = {};
        m_exchange->cancel();
    }

    /// The limits hold from here on. `deliver` may destroy this.
    void begin(std::function<void(HttpExchange&)> deliver)
    {
        m_exchange->lastProgress = m_start;
        m_exchange->deliver = [this, deliver = std::move(deliver)] {
            m_timer.reset();
            const auto exchange = m_exchange;
            if (m_lateText)
                exchange->errorText = m_lateText;
            deleteLater();
            deliver(*exchange);
        };
        watch();
    }
    /// The exchange is on a thread, which tells of its end.
    void threadBegan() { m_hasThread = true; }

private:
    /// The timer is not moved while bytes flow: it looks for progress when it is due.
    void watch()
    {
        const auto& request = m_exchange->request;
        const auto silenceEnd = m_exchange->lastProgress.load() + request.silenceLimit;
        const auto end
            = request.timeLimit ? std::min(silenceEnd, m_start + *request.timeLimit) : silenceEnd;
        const auto left
            = std::chrono::ceil<std::chrono::milliseconds>(end - m_clock.monotonicNow());
        if (left > left.zero()) {
            m_timer = m_clock.after(left, [this] { watch(); });
            return;
        }
        m_lateText = end == silenceEnd ? u"The server was silent for too long"_s
                                       : u"The time limit was reached"_s;
        m_exchange->cancel();
        if (!m_hasThread) {
            m_exchange->endedAt = m_clock.monotonicNow();
            std::exchange(m_exchange->deliver, {})();
        }
    }

    base::Clock& m_clock;
    const std::shared_ptr<HttpExchange> m_exchange;
    const std::chrono::steady_clock::time_point m_start;
    std::unique_ptr<base::Timer> m_timer;
    bool m_hasThread = false;
    std::optional<QString> m_lateText; ///< once a limit was reached
};

/// Whether libcurl finds one there. The name in capitals is not read for http: servers put a
/// visitor's header into it.
bool isProxyInEnvironment(const QString& scheme)
{
    const QByteArray own = scheme.toLatin1() + "_proxy";
    const QByteArray names[]
        = {own, own.startsWith("https") ? own.toUpper() : own, "all_proxy", "ALL_PROXY"};
    return std::ranges::any_of(
        names, [](const QByteArray& name) { return !qEnvironmentVariableIsEmpty(name); });
}

platform::HttpAnswer answerOf(const HttpExchange& exchange)
{
    platform::HttpAnswer answer {.status = exchange.status,
        .receivedBytes = exchange.receivedBytes,
        .truncated = exchange.isTooLong,
        .finalUrl = exchange.request.url,
        .endedAt = exchange.endedAt,
        .errorText = exchange.errorText,
        .usedProxy = exchange.proxy ? !exchange.proxy->isEmpty()
                                    : isProxyInEnvironment(exchange.request.url.scheme())};
    if (!answer.status && answer.errorText)
        answer.failure = exchange.failure.value_or(platform::HttpFailure::Other);
    if (exchange.isTooLong && !exchange.request.keepsBody)
        answer.errorText = u"The server sends far more than it was asked for"_s;
    if (!answer.errorText && answer.status && *answer.status / 100 != 2)
        answer.errorText = u"The server answered with status %1"_s.arg(*answer.status);
    if (!answer.errorText && !exchange.body.isEmpty())
        answer.body = exchange.body;
    return answer;
}

/// Signals are for the main thread; SIGPIPE is for nobody.
void blockSignals()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

CurlHttpClient::CurlHttpClient(
    base::Clock& clock, ProxyLookup lookUpProxy, const QString& authorityFile)
    : m_clock(clock)
    , m_lookUpProxy(std::move(lookUpProxy))
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

void CurlHttpClient::send(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    const auto exchange = std::make_shared<HttpExchange>();
    exchange->request = request;
    exchange->notice = std::exchange(exchange->request.notice, {});
    exchange->authorityFile = m_authorityFile;
    exchange->session = std::exchange(m_session, {});
    const auto end
        = [this, deliver = std::move(deliver), host = request.url.host()](HttpExchange& ended) {
              if (ended.request.keepsConnection)
                  m_session = std::exchange(ended.session, {});
              if (!ended.status)
                  m_proxies.remove(host);
              deliver(answerOf(ended));
          };
    auto* sent = new Request(owner, m_clock, exchange);
    sent->begin(end);
    findProxy(request.url, sent, [this, sent, exchange](const auto& proxy) {
        exchange->proxy = proxy;
        exchange->lastProgress = m_clock.monotonicNow();
        if (run(exchange))
            sent->threadBegan();
    });
}

void CurlHttpClient::findProxy(const QUrl& url, QObject* owner,
    const std::function<void(const std::optional<QByteArray>&)>& take)
{
    const auto known = m_proxies.constFind(url.host());
    if (!m_lookUpProxy || isProxyInEnvironment(url.scheme()))
        take({});
    else if (known != m_proxies.constEnd() && m_clock.monotonicNow() < known->askedAt + kProxyAge)
        take(known->address);
    else
        m_lookUpProxy(url, owner, [this, host = url.host(), take](const QByteArray& address) {
            m_proxies.insert(host, {address, m_clock.monotonicNow()});
            take(address);
        });
}

bool CurlHttpClient::run(const std::shared_ptr<HttpExchange>& exchange)
{
    joinFinished();
    const auto work = [exchange, &clock = m_clock] {
        blockSignals();
        runExchange(*exchange, clock);
        exchange->tell(&HttpExchange::deliver);
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
