#pragma once

#include "base/clock.h"
#include "platform/http_client.h"
#include "platform/http_transfer.h"

#include <thread>
#include <vector>

// This room connects to hosts, looks up names, sends probes, fetches pages and reads the routes. It
// implements the network interfaces of `platform` with sockets, rtnetlink and libcurl. It bounds
// the size and the time of all that comes from outside.

namespace netvane::net {

struct HttpExchange;

/// HTTP/1.1 with libcurl: pages for the portal check and transfers for the speed test. Each request
/// has its own thread and connection; nothing is kept for the next one. At most 64 KiB of response
/// headers are accepted.
class CurlHttpClient : public platform::HttpClient, public platform::HttpTransfers {
public:
    /// `clock` outlives this. `authorityFile` is a PEM file with the only certificates to trust;
    /// when it is empty, the system's authorities are trusted.
    explicit CurlHttpClient(base::Clock& clock, const QString& authorityFile = {});
    /// Ends all requests and waits for their threads, which do not wait for the network.
    ~CurlHttpClient() override;

    void get(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override;
    [[nodiscard]] std::unique_ptr<platform::HttpTransfer> start(
        const platform::TransferRequest& request,
        std::function<void(const platform::TransferOutcome&)> deliver) override;

private:
    struct Worker {
        std::shared_ptr<HttpExchange> exchange;
        std::thread thread;
    };

    /// False when the system has no thread to give; the time limit then ends the request.
    bool run(const std::shared_ptr<HttpExchange>& exchange);
    void joinFinished();

    base::Clock& m_clock;
    const QByteArray m_authorityFile;
    std::vector<Worker> m_workers;
};

} // namespace netvane::net
