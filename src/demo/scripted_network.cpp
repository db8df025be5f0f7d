#include "demo/scripted_network.h"

#include "demo/script.h"
#include "probes/probe_targets.h"

#include <QUrlQuery>

#include <netdb.h>

#include <array>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

constexpr std::chrono::milliseconds kPageTime = 180ms;

std::chrono::milliseconds wholeMilliseconds(std::chrono::microseconds time)
{
    return std::chrono::ceil<std::chrono::milliseconds>(time);
}

/// Ready after a time, without one never. One that is cancelled says nothing more.
class ScriptedConnection final : public platform::Connection {
public:
    ScriptedConnection(base::Clock& clock, std::optional<std::chrono::microseconds> time,
        QString answeredBy, platform::ConnectionHandler handler)
        : m_clock(clock)
        , m_time(time)
        , m_answeredBy(std::move(answeredBy))
        , m_handler(std::move(handler))
    {
    }

    void start() override
    {
        if (!m_time)
            return;
        const platform::ConnectionEvent ready {.state = platform::ConnectionState::Ready,
            .at = m_clock.monotonicNow() + *m_time,

            .answeredBy = m_answeredBy};
        m_timer = m_clock.after(
            wholeMilliseconds(*m_time), [handler = m_handler, ready] { handler(ready); });
    }
    void cancel() override { m_timer.reset(); }

private:
    base::Clock& m_clock;
    const std::optional<std::chrono::microseconds> m_time;
    const QString m_answeredBy;
    const platform::ConnectionHandler m_handler;
    std::unique_ptr<base::Timer> m_timer;
};

class ScriptedTransfer final : public platform::HttpTransfer {
public:
    ScriptedTransfer(std::shared_ptr<Stage> stage, std::chrono::microseconds time,
        qint64 receivedBytes, std::function<void(const platform::TransferOutcome&)> deliver)
        : m_stage(std::move(stage))
    {
        m_stage->countTransfers(1);
        const platform::TransferOutcome outcome {
            .receivedBytes = receivedBytes, .endedAt = m_stage->clock().monotonicNow() + time};
        m_timer = m_stage->clock().after(
            wholeMilliseconds(time), [deliver = std::move(deliver), outcome] { deliver(outcome); });
    }
    ~ScriptedTransfer() override { m_stage->countTransfers(-1); }

private:
    const std::shared_ptr<Stage> m_stage;
    std::unique_ptr<base::Timer> m_timer;
};

/// Look-ups differ a little from one to the next.
std::chrono::microseconds swayed(int microseconds, int number)
{
    constexpr std::array kPercent {100, 132, 88, 117, 94, 148, 103, 82, 109, 100};
    return std::chrono::microseconds(
        microseconds / 100 * kPercent[size_t(number) % kPercent.size()]);
}

} // namespace

std::unique_ptr<platform::Connection> ScriptedConnections::connectTcp(
    const QString& host, quint16, platform::ConnectionHandler handler)
{
    const bool isRouter = host != probes::kInternetTarget;
    return std::make_unique<ScriptedConnection>(
        m_stage->clock(), m_stage->answerTime(isRouter), host, std::move(handler));
}

std::unique_ptr<platform::Connection> ScriptedConnections::probeHop(
    const QString& host, quint16 port, int hopLimit, platform::ConnectionHandler handler)
{
    const auto way = hops();
    const bool isTarget = size_t(hopLimit) > way.size();
    const Hop hop = isTarget ? Hop {host, kTargetTime} : way[size_t(hopLimit) - 1];
    std::optional<std::chrono::microseconds> time;
    if (!hop.address.isEmpty())
        time = std::chrono::microseconds(std::llround(hop.milliseconds * 1000) + port % 7 * 90LL);
    return std::make_unique<ScriptedConnection>(
        m_stage->clock(), time, hop.address, std::move(handler));
}

platform::Resolution ScriptedResolver::resolve(const std::string&)
{
    const int number = m_lookups->begun++;
    const int microseconds = m_lookups->microseconds;
    if (microseconds >= 0)
        std::this_thread::sleep_for(swayed(microseconds, number));
    ++m_lookups->ended;
    if (microseconds >= 0)
        return {};
    return {.status = EAI_AGAIN, .errorText = "Temporary failure in name resolution"};
}

void ScriptedHttpClient::get(const platform::HttpRequest& request, QObject* owner,
    std::function<void(const platform::HttpAnswer&)> deliver)
{
    m_stage->later(
        kPageTime, owner, [deliver = std::move(deliver), url = request.url, stage = m_stage.get()] {
            const auto& portal = stage->scene().portal;
            deliver({.status = 200,
                .body = portal ? "<h1>Welcome</h1>"_ba : "<h1>Success</h1>"_ba,
                .finalUrl = portal.value_or(url)});
        });
}

std::unique_ptr<platform::HttpTransfer> ScriptedTransfers::start(
    const platform::TransferRequest& request,
    std::function<void(const platform::TransferOutcome&)> deliver)
{
    const auto& scene = m_stage->scene();
    const qint64 asked = QUrlQuery(request.url).queryItemValue(u"bytes"_s).toLongLong();
    const auto bits = double(request.uploadSize.value_or(asked)) * 8;
    const double bitsPerMicrosecond = request.uploadSize ? scene.uploadMbps : scene.downloadMbps;
    const std::chrono::microseconds time(std::llround(bits / bitsPerMicrosecond));
    return std::make_unique<ScriptedTransfer>(
        m_stage, time, request.uploadSize ? 0 : asked, std::move(deliver));
}

} // namespace netvane::demo
