#include "net/qt_http_client.h"

#include "base/background_work.h"
#include "net/qt_http_request.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

/// For one transfer, so that nothing at all is kept from one to the next: a connection that
/// survived the last one may belong to the network before this one. It costs a fraction of a
/// millisecond.
QNetworkAccessManager* makeManager(QObject* parent)
{
    auto* manager = new QNetworkAccessManager(parent);
    manager->setProxy(QNetworkProxy::NoProxy);
    return manager;
}

/// One request and what comes of it. Takes the reply's manager along when it goes.
class Exchange : public QObject {
public:
    Exchange(QNetworkReply* reply, const platform::HttpRequest& request, base::Clock& clock,
        std::function<void(const platform::HttpAnswer&)> deliver, QObject* owner)
        : QObject(owner)
        , m_reply(reply)
        , m_url(request.url)
        , m_bodyLimit(request.bodyLimit)
        , m_deliver(std::move(deliver))
        , m_limit(clock.after(request.timeLimit, [this] { stopAfterTimeLimit(); }))
    {
        // Whatever the server sends faster than it is taken stays in the network.
        m_reply->setReadBufferSize(m_bodyLimit + 1);
        connect(m_reply, &QNetworkReply::metaDataChanged, this, &Exchange::takeHead);
        connect(m_reply, &QNetworkReply::redirected, this, &Exchange::follow);
        connect(m_reply, &QIODevice::readyRead, this, &Exchange::takeBody);
        connect(m_reply, &QNetworkReply::finished, this, &Exchange::finish);
    }

    ~Exchange() override
    {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->manager()->deleteLater(); // and the reply, whose signal may have led here
    }

private:
    void stopAfterTimeLimit()
    {
        m_isLate = true;
        m_reply->abort();
    }

    void takeHead()
    {
        const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (status.isValid())
            m_answer.status = status.toInt();
    }

    /// The response that leads elsewhere is not the answer.
    void follow(const QUrl& url)
    {
        m_url = url;
        m_answer.status.reset();
        m_body.clear();
    }

    void takeBody()
    {
        if (m_reply->isOpen())
            m_body += m_reply->read(m_bodyLimit + 1 - m_body.size());
        if (m_body.size() <= m_bodyLimit)
            return;
        m_body.truncate(m_bodyLimit);
        m_answer.truncated = true;
        m_reply->abort();
    }

    void finish()
    {
        m_limit.reset();
        if (!m_answer.truncated)
            takeBody();
        m_answer.finalUrl = m_url;
        if (m_isLate)
            m_answer.errorText = u"The time limit was reached"_s;
        else if (!m_answer.truncated && m_reply->error() != QNetworkReply::NoError)
            m_answer.errorText = m_reply->errorString();
        if (!m_answer.errorText && !m_body.isEmpty())
            m_answer.body = m_body;
        deleteLater();
        m_deliver(m_answer);
    }

    QNetworkReply* const m_reply;
    QUrl m_url; // the reply's own is already that of a redirect which it then refuses
    const qint64 m_bodyLimit;
    const std::function<void(const platform::HttpAnswer&)> m_deliver;
    std::unique_ptr<base::Timer> m_limit;
    QByteArray m_body;
    platform::HttpAnswer m_answer;
    bool m_isLate = false;
};

} // namespace

QtHttpClient::QtHttpClient(
    base::Clock& clock, base::WorkQueue& queue, std::optional<QSslConfiguration> tls)
    : m_clock(clock)
    , m_queue(queue)
    , m_tls(std::move(tls))
{
}

void QtHttpClient::get(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    if (!isWebAddress(request.url)) {
        const platform::HttpAnswer refused {
            .finalUrl = request.url, .errorText = u"Not an http or https address"_s};
        QMetaObject::invokeMethod(
            owner, [deliver = std::move(deliver), refused] { deliver(refused); },
            Qt::QueuedConnection);
        return;
    }
    if (m_tls) {
        start(request, owner, std::move(deliver));
        return;
    }
    // The first use of TLS loads a library and the system's authorities, some milliseconds' worth.
    base::runInBackground(m_queue, owner, &QSslConfiguration::defaultConfiguration,
        [this, request, owner, deliver = std::move(deliver)](const QSslConfiguration& tls) {
            m_tls = tls;
            start(request, owner, deliver);
        });
}

void QtHttpClient::start(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    auto made = makeStrangersRequest(request.url, request.maximumRedirects);
    made.setSslConfiguration(*m_tls);
    new Exchange(makeManager(&m_managers)->get(made), request, m_clock, std::move(deliver), owner);
}

} // namespace netvane::net
