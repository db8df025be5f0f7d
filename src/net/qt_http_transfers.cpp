#include "net/qt_http_transfers.h"

#include "base/main_thread.h"
#include "net/qt_http_request.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>

#include <array>
#include <atomic>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

constexpr int kMaximumRedirects = 10;
/// What may lie between the network and the count: some milliseconds of a fast link.
constexpr qint64 kReadBuffer = qint64(1024) * 1024;

class Transfer;

/// What the main thread and that of the transfers share of one transfer.
struct Link {
    std::atomic<std::chrono::steady_clock::time_point> lastProgress;
    QPointer<QObject> exchange; ///< looked at on the transfers' thread only
    Transfer* transfer = nullptr; ///< looked at on the main thread only; null at its end
};

/// Whether a server answered properly, though not to Qt's liking. The status is not ours to judge.
bool isOnlyAboutStatus(const QNetworkReply& reply)
{
    const auto error = reply.error();
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= 400
        && error > QNetworkReply::ProxyConnectionRefusedError
        && error != QNetworkReply::ContentReSendError
        && error != QNetworkReply::ProtocolUnknownError && error != QNetworkReply::ProtocolFailure;
}

/// One request and what comes of it, on the transfers' thread. Deletes itself at its end.
class Exchange : public QObject {
public:
    /// `done` is called on this thread, and not after the exchange was deleted.
    Exchange(const platform::TransferRequest& request, const QSslConfiguration& tls,
        const base::Clock& clock, std::shared_ptr<Link> link,
        std::function<void(const platform::TransferOutcome&)> done)
        : m_request(request)
        , m_clock(clock)
        , m_link(std::move(link))
        , m_done(std::move(done))
    {
        m_manager.setProxy(QNetworkProxy::NoProxy);
        m_reply = send(tls);
        m_reply->setReadBufferSize(kReadBuffer);
        connect(m_reply, &QNetworkReply::metaDataChanged, this, &Exchange::noteProgress);
        connect(m_reply, &QNetworkReply::uploadProgress, this, &Exchange::noteProgress);
        connect(m_reply, &QNetworkReply::redirected, this, &Exchange::startOver);
        connect(m_reply, &QIODevice::readyRead, this, &Exchange::countBody);
        connect(m_reply, &QNetworkReply::finished, this, &Exchange::finish);
    }

    ~Exchange() override
    {
        m_reply->disconnect(this);
        m_reply->abort();
    }

private:
    QNetworkReply* send(const QSslConfiguration& tls)
    {
        auto made = makeStrangersRequest(m_request.url, kMaximumRedirects);
        made.setSslConfiguration(tls);
        if (!m_request.uploadSize)
            return m_manager.get(made);
        made.setHeader(QNetworkRequest::ContentTypeHeader, u"application/octet-stream"_s);
        return m_manager.post(made, QByteArray(*m_request.uploadSize, '\0'));
    }

    void noteProgress() { m_link->lastProgress = m_clock.monotonicNow(); }

    /// The response that leads elsewhere is not the one that counts.
    void startOver()
    {
        noteProgress();
        m_received = 0;
    }

    void countBody()
    {
        noteProgress();
        takeBody();
        if (m_received <= m_request.answerLimit || m_isStopped)
            return;
        m_isStopped = true;
        m_reply->abort();
    }

    void takeBody()
    {
        while (m_reply->isOpen()) {
            const qint64 count = m_reply->read(m_scratch.data(), qint64(m_scratch.size()));
            if (count <= 0)
                return;
            m_received += count;
        }
    }

    void finish()
    {
        platform::TransferOutcome outcome {.endedAt = m_clock.monotonicNow(), .errorText = {}};
        takeBody();
        outcome.receivedBytes = m_received;
        if (m_isStopped)
            outcome.errorText = u"The server sends far more than it was asked for"_s;
        else if (m_reply->error() != QNetworkReply::NoError && !isOnlyAboutStatus(*m_reply))
            outcome.errorText = m_reply->errorString();
        deleteLater();
        m_done(outcome);
    }

    const platform::TransferRequest m_request;
    const base::Clock& m_clock;
    const std::shared_ptr<Link> m_link;
    const std::function<void(const platform::TransferOutcome&)> m_done;
    QNetworkAccessManager m_manager; // for one transfer, so that nothing stays from one to the next
    QNetworkReply* m_reply = nullptr;
    std::array<char, 65536> m_scratch; // what is read into it is thrown away
    qint64 m_received = 0;
    bool m_isStopped = false;
};

/// The main thread's end of an exchange: its owner's handle, and who watches for silence.
class Transfer : public platform::HttpTransfer {
public:
    Transfer(base::Clock& clock, std::chrono::milliseconds silenceLimit, QObject* worker,
        std::function<void(const platform::TransferOutcome&)> deliver)
        : m_clock(clock)
        , m_silenceLimit(silenceLimit)
        , m_worker(worker)
        , m_deliver(std::move(deliver))
    {
        m_link->transfer = this;
        m_link->lastProgress = clock.monotonicNow();
        watchForSilence();
    }

    ~Transfer() override { letGo(); }

    const std::shared_ptr<Link>& link() const { return m_link; }

    /// May destroy this.
    void end(const platform::TransferOutcome& outcome)
    {
        letGo();
        const auto deliver = std::move(m_deliver);
        deliver(outcome);
    }

private:
    void letGo()
    {
        m_silence.reset();
        m_link->transfer = nullptr;
        QMetaObject::invokeMethod(m_worker, [link = m_link] { delete link->exchange; });
    }

    /// No timer is moved while bytes flow: it asks when the last ones came only once it is due.
    void watchForSilence()
    {
        const auto end = m_link->lastProgress.load() + m_silenceLimit;
        const auto left
            = std::chrono::ceil<std::chrono::milliseconds>(end - m_clock.monotonicNow());
        if (left > left.zero())
            m_silence = m_clock.after(left, [this] { watchForSilence(); });
        else
            this->end({.endedAt = m_clock.monotonicNow(),
                .errorText = u"The server was silent for too long"_s});
    }

    base::Clock& m_clock;
    const std::chrono::milliseconds m_silenceLimit;
    QObject* const m_worker;
    std::function<void(const platform::TransferOutcome&)> m_deliver;
    std::unique_ptr<base::Timer> m_silence;
    const std::shared_ptr<Link> m_link = std::make_shared<Link>();
};

} // namespace

QtHttpTransfers::QtHttpTransfers(base::Clock& clock, std::optional<QSslConfiguration> tls)
    : m_clock(clock)
    , m_tls(std::move(tls))
    , m_worker(new QObject)
{
    m_worker->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
}

QtHttpTransfers::~QtHttpTransfers()
{
    if (!m_thread.isRunning()) {
        delete m_worker;
        return;
    }
    m_thread.quit();
    m_thread.wait();
}

std::unique_ptr<platform::HttpTransfer> QtHttpTransfers::start(
    const platform::TransferRequest& request,
    std::function<void(const platform::TransferOutcome&)> deliver)
{
    if (!m_thread.isRunning())
        m_thread.start();
    auto transfer
        = std::make_unique<Transfer>(m_clock, request.silenceLimit, m_worker, std::move(deliver));
    const auto done = [link = transfer->link()](const platform::TransferOutcome& outcome) {
        base::postToMainThread([link, outcome] {
            if (link->transfer)
                link->transfer->end(outcome);
        });
    };
    QMetaObject::invokeMethod(m_worker, [this, request, link = transfer->link(), done] {
        if (!isWebAddress(request.url)) {
            done({.endedAt = m_clock.monotonicNow(),
                .errorText = u"Not an http or https address"_s});
            return;
        }
        // The first use of TLS reads the system's authorities, which is why it happens here.
        const auto tls = m_tls ? *m_tls : QSslConfiguration::defaultConfiguration();
        link->exchange = new Exchange(request, tls, m_clock, link, done);
        link->exchange->setParent(m_worker);
    });
    return transfer;
}

} // namespace netvane::net
