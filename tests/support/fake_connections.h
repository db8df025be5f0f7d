#pragma once

#include "base/clock.h"
#include "platform/hop_probe.h"

#include <atomic>
#include <thread>
#include <vector>

namespace netvane::test {

/// Connections and probes whose fate is told by hand.
class FakeConnections : public platform::ConnectionFactory, public platform::HopProbeFactory {
public:
    struct Made {
        QString host;
        quint16 port = 0;
        int hopLimit = 0; ///< only of probes
        platform::ConnectionHandler handler;
        bool isStarted = false;
        std::atomic<bool> isCancelled = false;
    };

    explicit FakeConnections(const base::Clock& clock)
        : m_clock(clock)
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return probeHop(host, port, 0, std::move(handler));
    }
    std::unique_ptr<platform::Connection> probeHop(const QString& host, quint16 port, int hopLimit,
        platform::ConnectionHandler handler) override
    {
        auto made = std::make_shared<Made>();
        made->host = host;
        made->port = port;
        made->hopLimit = hopLimit;
        made->handler = std::move(handler);
        m_made.push_back(made);
        return std::make_unique<Handle>(made);
    }

    const std::vector<std::shared_ptr<Made>>& made() const { return m_made; }

    /// Tells the owner of the last connection, or of an earlier one, as a network thread would.
    void tell(platform::ConnectionState state, const QString& error = {}, size_t back = 0)
    {
        tell({state, m_clock.monotonicNow(), error, {}}, back);
    }
    /// A good answer to the last probe, now.
    void answer(const QString& by)
    {
        tell({platform::ConnectionState::Ready, m_clock.monotonicNow(), {}, by}, 0);
    }
    void tell(const platform::ConnectionEvent& event, size_t back)
    {
        const auto& made = *m_made.at(m_made.size() - 1 - back);
        std::jthread([&] { made.handler(event); });
    }

private:
    class Handle : public platform::Connection {
    public:
        explicit Handle(std::shared_ptr<Made> made)
            : m_made(std::move(made))
        {
        }
        ~Handle() override { m_made->isCancelled = true; }
        void start() override { m_made->isStarted = true; }
        void cancel() override { m_made->isCancelled = true; }

    private:
        std::shared_ptr<Made> m_made;
    };

    const base::Clock& m_clock;
    std::vector<std::shared_ptr<Made>> m_made;
};

} // namespace netvane::test
