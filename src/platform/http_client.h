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
    /// Absent: GET. Otherwise POST with a body of so many zero bytes (application/octet-stream).
    std::optional<qint64> uploadSize;
    qint64 bodyLimit = 65536; ///< bytes of the answer; the transfer ends when there are more
    bool keepsBody = true; ///< otherwise the bytes of the answer are counted and thrown away
    /// The connection stays open for the next request, which uses it when it goes to the same
    /// server. Otherwise it is closed at the end.
    bool keepsConnection = false;
    std::chrono::milliseconds silenceLimit {5000}; ///< the longest time without any progress
    /// From the call to the answer, whatever comes; absent: as long as there is progress.
    std::optional<std::chrono::milliseconds> timeLimit;
    /// Runs once on the main thread, when `noticeBytes` of the answer's body have come.
    std::function<void()> notice;
    qint64 noticeBytes = 0;
};

/// Why there is no answer.
enum class HttpFailure {
    NotResolved, ///< the name has no address
    NotConnected, ///< no server could be reached
    NotTrusted, ///< no certificate for the name, or no TLS at all
    Silent, ///< a connection, but no or not all of the answer in time
    Other,
};

/// What came back. Everything in it is the word of whoever answered, who may be anyone.
struct HttpAnswer {
    /// Of the last response; absent when there was none. A proxy that does not pass the request on
    /// (CONNECT, RFC 9110) answers in the server's place.
    std::optional<int> status;
    /// The body as it came over the wire, or its first `bodyLimit` bytes; absent when it was empty,
    /// when it was not to be kept, and beside an error.
    std::optional<QByteArray> body;
    qint64 receivedBytes = 0; ///< of the last response's body
    bool truncated = false; ///< the body had more than `bodyLimit` bytes
    QUrl finalUrl; ///< where the last response came from, or the last request went to
    /// By the monotonic clock, read on the transfer's thread: a busy main thread is not in it.
    std::chrono::steady_clock::time_point endedAt;
    /// Why there is no answer, or not all of it. Present together with `status` when a response was
    /// not liked: a status outside 200 to 299, or a redirect that is not followed. A body that is
    /// only counted must not have more than `bodyLimit` bytes.
    std::optional<QString> errorText;
    std::optional<HttpFailure> failure; ///< the kind of `errorText`; absent with a status
    bool usedProxy = false;
};

/// Fetches and sends as a stranger would: no cookies, no credentials, no cache, no compression.
/// The system's proxy is used. Redirects are followed, ten at most, unless they lead from https to
/// http or to another scheme; an answer that cannot be trusted (certificate) is none. Main thread.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// `deliver` runs once, never from inside the call, unless `owner` goes first, which ends the
    /// transfer at once; `deliver` may end the owner. The client outlives every owner.
    virtual void send(
        const HttpRequest& request, QObject* owner, std::function<void(const HttpAnswer&)> deliver)
        = 0;
};

} // namespace netvane::platform
