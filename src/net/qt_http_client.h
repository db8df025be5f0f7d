#pragma once

#include "base/clock.h"
#include "platform/http_client.h"

#include <QObject>
#include <QSslConfiguration>

namespace netvane::base {
class WorkQueue;
} // namespace netvane::base

namespace netvane::net {

/// Qt Network, whose connections live on a thread of its own. Nothing of it is made before the
/// first request.
class QtHttpClient : public platform::HttpClient {
public:
    /// `clock` and `queue` outlive this. `tls` is what certificates are judged by; without it, the
    /// system's authorities.
    QtHttpClient(
        base::Clock& clock, base::WorkQueue& queue, std::optional<QSslConfiguration> tls = {});

    void get(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override;

private:
    void start(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver);

    base::Clock& m_clock;
    base::WorkQueue& m_queue;
    std::optional<QSslConfiguration> m_tls;
    QObject m_managers; ///< has one child for each transfer under way
};

} // namespace netvane::net
