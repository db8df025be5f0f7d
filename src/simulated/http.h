#pragma once

#include "base/clock.h"
#include "platform/http_client.h"
#include "platform/http_transfer.h"

#include <QPointer>

#include <vector>

namespace netvane::simulated {

/// Requests wait for `answer`. Main thread.
class HttpClient final : public platform::HttpClient {
public:
    struct Pending {
        platform::HttpRequest request;
        QPointer<QObject> owner;
        std::function<void(const platform::HttpAnswer&)> deliver;
    };

    void get(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override
    {
        pending.push_back({request, owner, std::move(deliver)});
        if (whenAsked)
            whenAsked();
    }
    /// Answers the request that has waited longest.
    void answer(const platform::HttpAnswer& answer)
    {
        const Pending first = std::move(pending.front());
        pending.erase(pending.begin());
        if (first.owner)
            first.deliver(answer);
    }

    std::vector<Pending> pending;
    /// Runs with each request. It must not answer at once.
    std::function<void()> whenAsked;
};

/// Transfers that move nothing. They wait for `end`, or `script` says at their start how they end.
/// Main thread.
class HttpTransfers final : public platform::HttpTransfers {
public:
    struct Started {
        platform::TransferRequest request;
        std::function<void(const platform::TransferOutcome&)> deliver;
        bool isGone = false;
        std::unique_ptr<base::Timer> timer; ///< until the end that the script gave
    };
    struct End {
        std::chrono::microseconds time; ///< since the start
        qint64 receivedBytes = 0;
    };

    explicit HttpTransfers(base::Clock& clock)
        : m_clock(clock)
    {
    }

    std::unique_ptr<platform::HttpTransfer> start(const platform::TransferRequest& request,
        std::function<void(const platform::TransferOutcome&)> deliver) override;

    std::function<End(const platform::TransferRequest&)> script;

    /// Ends the newest one, unless it is gone.
    void end(const platform::TransferOutcome& outcome)
    {
        const auto last = started.back();
        if (!last->isGone)
            std::exchange(last->deliver, {})(outcome);
    }

    std::vector<std::shared_ptr<Started>> started; ///< all so far; empty with a script
    int running = 0; ///< those that are not gone

private:
    class Handle;

    base::Clock& m_clock;
};

} // namespace netvane::simulated
