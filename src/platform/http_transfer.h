#pragma once

#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace netvane::platform {

/// What to move: a body from the server, or one to it.
struct TransferRequest {
    QUrl url; ///< http or https
    /// Absent: GET. Otherwise POST with a body of so many zero bytes (application/octet-stream),
    /// which is made once, on the transfer's own thread.
    std::optional<qint64> uploadSize;
    qint64 answerLimit = 0; ///< bytes; a server that sends more fails the transfer
    std::chrono::milliseconds silenceLimit {60000}; ///< the longest time without any progress
};

/// What came of it.
struct TransferOutcome {
    qint64 receivedBytes = 0; ///< of the last response's body, as they came over the wire
    /// By the monotonic clock, read on the transfer's thread: a busy main thread is not in it.
    std::chrono::steady_clock::time_point endedAt;
    /// Why the transfer did not come to its end. A status of 400 and above is no such reason.
    std::optional<QString> errorText;
};

/// A transfer under way. Destroying it ends it at once, without a word to who started it and
/// without waiting; that may be done from inside its own delivery. Main thread.
class HttpTransfer {
public:
    virtual ~HttpTransfer() = default;
};

/// Moves bodies that nobody looks at: what comes is counted and thrown away. No cookies, no
/// credentials, no cache, no compression, and a connection of its own for each transfer. Redirects
/// are followed unless they lead from https to http or to another scheme. Nothing but the delivery
/// happens on the main thread.
class HttpTransfers {
public:
    virtual ~HttpTransfers() = default;

    /// `deliver` runs once on the main thread, never from inside the call, unless the transfer is
    /// destroyed first. Outlives every transfer. Main thread.
    [[nodiscard]] virtual std::unique_ptr<HttpTransfer> start(
        const TransferRequest& request, std::function<void(const TransferOutcome&)> deliver)
        = 0;
};

} // namespace netvane::platform
