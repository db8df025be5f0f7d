#include "simulated/http.h"

namespace netvane::simulated {

class HttpTransfers::Handle : public platform::HttpTransfer {
public:
    Handle(int& running, std::shared_ptr<Started> started)
        : m_running(running)
        , m_started(std::move(started))
    {
        ++m_running;
    }
    ~Handle() override
    {
        m_started->isGone = true;
        m_started->timer.reset();
        --m_running;
    }

private:
    int& m_running;
    const std::shared_ptr<Started> m_started;
};

std::unique_ptr<platform::HttpTransfer> HttpTransfers::start(
    const platform::TransferRequest& request,
    std::function<void(const platform::TransferOutcome&)> deliver)
{
    auto one = std::make_shared<Started>();
    one->request = request;
    one->deliver = std::move(deliver);
    if (script) {
        const auto [time, receivedBytes] = script(request);
        const platform::TransferOutcome outcome {receivedBytes, m_clock.monotonicNow() + time, {}};
        one->timer = m_clock.after(std::chrono::ceil<std::chrono::milliseconds>(time),
            [deliver = one->deliver, outcome] { deliver(outcome); });
    } else {
        started.push_back(one);
    }
    return std::make_unique<Handle>(running, std::move(one));
}

} // namespace netvane::simulated
