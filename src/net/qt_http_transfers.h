#pragma once

#include "base/clock.h"
#include "platform/http_transfer.h"

#include <QSslConfiguration>
#include <QThread>

namespace netvane::net {

/// Qt Network on a thread of its own, which begins with the first transfer and serves all of them.
/// They have no background class of service: Qt gives no way to the socket of a request.
class QtHttpTransfers : public platform::HttpTransfers {
public:
    /// `clock` outlives this. `tls` is what certificates are judged by; without it, the system's
    /// authorities.
    explicit QtHttpTransfers(base::Clock& clock, std::optional<QSslConfiguration> tls = {});
    /// Waits for the thread, on which nothing waits for the network.
    ~QtHttpTransfers() override;

    [[nodiscard]] std::unique_ptr<platform::HttpTransfer> start(
        const platform::TransferRequest& request,
        std::function<void(const platform::TransferOutcome&)> deliver) override;

private:
    base::Clock& m_clock;
    const std::optional<QSslConfiguration> m_tls;
    QThread m_thread;
    QObject* const m_worker; ///< on the thread; has one child for each transfer under way
};

} // namespace netvane::net
