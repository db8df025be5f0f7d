#pragma once

#include "base/clock.h"
#include "platform/http_client.h"

#include <QPointer>

#include <vector>

namespace netvane::simulated {

/// Requests that move nothing. They wait for `answer`, or `script` says at their start how they
/// end. Main thread.
class HttpClient final : public platform::HttpClient {
public:
    struct Pending {
        platform::HttpRequest request;
        QPointer<QObject> owner; ///< null: nobody waits any more
        std::function<void(const platform::HttpAnswer&)> deliver;
    };
    struct End {
        std::chrono::microseconds time; ///< since the start
        platform::HttpAnswer answer;
    };

    explicit HttpClient(base::Clock& clock)
        : m_clock(clock)
    {
    }

    void send(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override;
    /// Answers the request that has waited longest.
    void answer(const platform::HttpAnswer& answer);

    std::function<End(const platform::HttpRequest&)> script;
    std::vector<Pending> pending; ///< the newest last; empty with a script
    int pages = 0; ///< under way by the script
    int transfers = 0; ///< likewise, of bodies that nobody keeps

private:
    base::Clock& m_clock;
};

} // namespace netvane::simulated
