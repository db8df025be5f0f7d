#include "net/qt_http_request.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && (url.scheme() == u"https"_s || url.scheme() == u"http"_s);
}

QNetworkRequest makeStrangersRequest(const QUrl& url, int maximumRedirects)
{
    QNetworkRequest made(url);
    made.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    made.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    for (const auto attribute :
        {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
            QNetworkRequest::AuthenticationReuseAttribute})
        made.setAttribute(attribute, QNetworkRequest::Manual);
    // Qt 6.4 has faults in it that nobody mends any more, and one request at a time gains nothing.
    made.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    made.setAttribute(
        QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    made.setMaximumRedirectsAllowed(maximumRedirects);
    // Nothing is unpacked: a small body cannot become a large one.
    made.setRawHeader("Accept-Encoding", "identity");
    made.setRawHeader("Connection", "close");
    return made;
}

} // namespace netvane::net
