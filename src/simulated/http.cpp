#include "simulated/http.h"

#include <QObject>

namespace netvane::simulated {
namespace {

/// A request whose end the script gave. Goes with its owner.
struct UnderWay : QObject {
    UnderWay(QObject* owner, int& transfers)
        : QObject(owner)
        , m_transfers(transfers)
    {
        ++m_transfers;
    }
    ~UnderWay() override { --m_transfers; }

    std::unique_ptr<base::Timer> timer;

private:
    int& m_transfers;
};

} // namespace

void HttpClient::send(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    if (!script) {
        pending.push_back({request, owner, std::move(deliver)});
        return;
    }
    auto [time, answer] = script(request);
    answer.endedAt = m_clock.monotonicNow() + time;
    auto* underWay = new UnderWay(owner, request.keepsBody ? pages : transfers);
    underWay->timer = m_clock.after(std::chrono::ceil<std::chrono::milliseconds>(time),
        [underWay, deliver = std::move(deliver), answer = std::move(answer)] {
            underWay->deleteLater();
            deliver(answer);
        });
}

void HttpClient::answer(const platform::HttpAnswer& answer)
{
    const Pending first = std::move(pending.front());
    pending.erase(pending.begin());
    if (first.owner)
        first.deliver(answer);
}

} // namespace netvane::simulated
