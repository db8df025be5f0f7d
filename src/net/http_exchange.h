#pragma once

#include "base/clock.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

using CURLM = void; // as in curl/curl.h

namespace netvane::net {

/// One request and its response, redirects included. The thread of the request calls
/// `runExchange`; the main thread reads the results once `deliver` is called.
struct HttpExchange {
    HttpExchange() = default;
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    /// Makes `runExchange` return soon. Any thread.
    void cancel();

    // The request. `url` follows redirects.
    QUrl url;
    std::optional<qint64> uploadSize; ///< zero bytes to POST; absent: GET
    qint64 bodyLimit = 0; ///< bytes; a longer body ends the exchange
    int maximumRedirects = 10;
    bool keepsBody = false; ///< otherwise the bytes of the body are only counted
    QByteArray authorityFile;

    // The results.
    std::optional<int> status; ///< of a response whose headers are complete
    QByteArray body;
    qint64 receivedBytes = 0; ///< of the last response's body
    bool isTooLong = false; ///< the body exceeded `bodyLimit`
    std::optional<QString> errorText;
    std::chrono::steady_clock::time_point endedAt;

    // Shared by both threads.
    std::atomic<std::chrono::steady_clock::time_point> lastProgress;
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isOver = false; ///< the thread is about to end
    std::atomic<CURLM*> multi = nullptr;

    std::function<void()> deliver; ///< main thread; empty when nobody waits
};

/// Blocks until the exchange has ended or was cancelled.
void runExchange(HttpExchange& exchange, const base::Clock& clock);

} // namespace netvane::net
