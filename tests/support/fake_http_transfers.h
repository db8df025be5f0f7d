#pragma once

#include "platform/http_transfer.h"

#include <vector>

namespace netvane::test {

/// Transfers whose fate is told by hand.
class FakeHttpTransfers : public platform::HttpTransfers {
public:
    struct Started {
        platform::TransferRequest request;
        std::function<void(const platform::TransferOutcome&)> deliver;
        bool isGone = false;
    };

    std::unique_ptr<platform::HttpTransfer> start(const platform::TransferRequest& request,
        std::function<void(const platform::TransferOutcome&)> deliver) override
    {
        started.push_back(std::make_shared<Started>(Started {request, std::move(deliver)}));
        return std::make_unique<Handle>(started.back());
    }

    /// Ends the last transfer, unless it was let go.
    void end(const platform::TransferOutcome& outcome)
    {
        const auto last = started.back();
        if (!last->isGone)
            std::exchange(last->deliver, {})(outcome);
    }

    std::vector<std::shared_ptr<Started>> started;

private:
    class Handle : public platform::HttpTransfer {
    public:
        explicit Handle(std::shared_ptr<Started> started)
            : m_started(std::move(started))
        {
        }
        ~Handle() override { m_started->isGone = true; }

    private:
        std::shared_ptr<Started> m_started;
    };
};

} // namespace netvane::test
