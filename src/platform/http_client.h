#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>

class QObject;

namespace netvane::platform {

struct HttpRequest {
    QUrl url; ///< http or https
    std::chrono::milliseconds timeLimit {5000}; ///< from the call to the answer, whatever comes
    qint64 bodyLimit = 65536; ///< bytes; the transfer ends when there are more
    int maximumRedirects = 10;
};

/// What came back. Everything in it is the word of whoever answered, who may be anyone.
struct HttpAnswer {
    std::optional<int> status; ///< of the last response; absent when there was none
    /// The body as it came over the wire, or its first `bodyLimit` bytes; absent when it was empty,
    /// when the transfer broke off before its end, and beside an error.
    std::optional<QByteArray> body;
    bool truncated = false; ///< the body had more than `bodyLimit` bytes
    QUrl finalUrl; ///< where the last response came from, or the last request went to
    /// Why there is no answer, or not all of it. Present together with `status` when a response was
    /// not liked: a status of 400 and above, or a redirect that is not followed.
    std::optional<QString> errorText;
};

/// Fetches a page as a stranger would: no cookies, no credentials, no cache, and a connection of
/// its own. Redirects are followed unless they lead from https to http or to another scheme; an
/// answer that cannot be trusted (certificate) is none. Main thread.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// `deliver` runs once, never from inside the call, unless `owner` goes first, which ends the
    /// transfer. The client outlives every owner.
    virtual void get(
        const HttpRequest& request, QObject* owner, std::function<void(const HttpAnswer&)> deliver)
        = 0;
};

} // namespace netvane::platform
