#pragma once

#include "base/clock.h"
#include "platform/http_client.h"

#include <QHash>

#include <memory>
#include <thread>
#include <vector>

// This room connects to hosts, looks up names, sends probes, fetches pages and reads the routes. It
// implements the network interfaces of `platform` with sockets, rtnetlink and libcurl. It bounds
// the size and the time of all that comes from outside.

namespace netvane::net {

struct HttpExchange;

/// Asks for the proxy that leads to `url` and passes it on as libcurl takes it, empty for none.
/// May do so inside the call; never once `owner` is gone.
using ProxyLookup = std::function<void(
    const QUrl& url, QObject* owner, std::function<void(const QByteArray& proxy)> take)>;

/// HTTP/1.1 with libcurl: pages for the portal check and transfers for the speed test. Each request
/// has a thread of its own, and a connection of its own unless the one before left it one. At most
/// 64 KiB of response headers are accepted. A proxy that the environment names (curl(1)) comes
/// first, then what `lookUpProxy` says; the answer serves for five minutes, but not after a request
/// that nobody answered.
class CurlHttpClient : public platform::HttpClient {
public:
    /// `clock` outlives this. `authorityFile` is a PEM file with the only certificates to trust;
    /// when it is empty, the system's authorities are trusted.
    explicit CurlHttpClient(
        base::Clock& clock, ProxyLookup lookUpProxy = {}, const QString& authorityFile = {});
    /// Ends all requests and waits for their threads, which do not wait for the network.
    ~CurlHttpClient() override;

    void send(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override;

private:
    struct Worker {
        std::shared_ptr<HttpExchange> exchange;
        std::thread thread;
    };
    struct Proxy {
        QByteArray address;
        std::chrono::steady_clock::time_point askedAt;
    };

    void findProxy(const QUrl& url, QObject* owner,
        const std::function<void(const std::optional<QByteArray>&)>& take);
    /// False when the system has no thread to give; the limits then end the request.
    bool run(const std::shared_ptr<HttpExchange>& exchange);
    void joinFinished();

    base::Clock& m_clock;
    const ProxyLookup m_lookUpProxy;
    const QByteArray m_authorityFile;
    QHash<QString, Proxy> m_proxies; ///< by host; the program asks a handful of hosts
    std::shared_ptr<void> m_session; ///< libcurl's connections that the last request left open
    std::vector<Worker> m_workers;
};

} // namespace netvane::net
