#pragma once

#include "platform/clock.h"
#include "platform/http_client.h"

#include <QObject>
#include <QSslConfiguration>

namespace netvane::platform {

class WorkQueue;

/// Qt Network, whose connections live on a thread of its own. Nothing of it is made before the
/// first request.
class QtHttpClient : public HttpClient {
public:
    /// `clock` and `queue` outlive this. `tls` is what certificates are judged by; without it, the
    /// system's authorities.
    QtHttpClient(Clock& clock, WorkQueue& queue, std::optional<QSslConfiguration> tls = {});

    void get(const HttpRequest& request, QObject* owner,
        std::function<void(const HttpAnswer&)> deliver) override;

private:
    void start(
        const HttpRequest& request, QObject* owner, std::function<void(const HttpAnswer&)> deliver);

    Clock& m_clock;
    WorkQueue& m_queue;
    std::optional<QSslConfiguration> m_tls;
    QObject m_managers; ///< has one child for each transfer under way
};

} // namespace netvane::platform
