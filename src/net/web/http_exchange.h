#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "platform/http_client.h"

#include <sys/eventfd.h>

#include <atomic>
#include <memory>

using CURLM = void; // as in curl/curl.h

namespace netvane::net {

/// One request and its response, redirects included. The thread of the request calls
/// `runExchange`; the main thread reads the results once `deliver` is called.
struct HttpExchange : std::enable_shared_from_this<HttpExchange> {
    using Handler = std::function<void()>;

    /// Makes `runExchange` return soon. Any thread.
    void cancel();
    /// Has the main thread run `deliver` or `notice` and drop it. Any thread.
    void tell(Handler HttpExchange::*handler);

    platform::HttpRequest request; ///< `url` follows redirects
    QByteArray authorityFile; ///< see `CurlHttpClient`
    /// Empty: none; absent: what the environment says.
    std::optional<QByteArray> proxy;
    /// libcurl's connections: those that the request before left open, later those of this one.
    std::shared_ptr<CURLM> session;

    // The results.
    std::optional<int> status; ///< of a response whose headers are complete
    QByteArray body;
    qint64 receivedBytes = 0; ///< of the last response's body
    bool isTooLong = false; ///< the body exceeded the limit
    std::optional<platform::HttpFailure> failure; ///< the kind of `errorText`
    std::optional<QString> errorText;
    std::chrono::steady_clock::time_point endedAt;

    // Shared by both threads.
    std::atomic<std::chrono::steady_clock::time_point> lastProgress;
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isOver = false; ///< the thread is about to end
    /// Ends the wait for the sockets (eventfd(2)).
    const base::FileDescriptor wake {::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    // Main thread; empty when nobody waits.
    Handler deliver;
    Handler notice;
};

/// Blocks until the exchange has ended or was cancelled.
void runExchange(HttpExchange& exchange, const base::Clock& clock);

} // namespace netvane::net
