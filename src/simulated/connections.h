#pragma once

#include "base/clock.h"
#include "platform/hop_probe.h"

#include <optional>
#include <vector>

namespace netvane::simulated {

/// TCP connections and hop probes that send nothing. They wait for `tell`, or `script` decides at
/// their start how they end. Main thread.
class Connections final : public platform::ConnectionFactory, public platform::HopProbeFactory {
public:
    static constexpr int kFullPacket = -1; ///< in place of a hop limit

    struct Made {
        QString host;
        quint16 port = 0;
        int hopLimit = 0; ///< only of hop probes; or `kFullPacket`
        bool isWatched = false; ///< of a path for probes again and again
        platform::ConnectionHandler handler;
        bool isStarted = false;
        bool isCancelled = false;
        std::unique_ptr<base::Timer> timer; ///< runs until the answer of the script is due
    };
    struct Answer {
        std::chrono::microseconds time; ///< since the start
        QString by {};
        int retransmissions = 0;
    };

    explicit Connections(base::Clock& clock)
        : m_clock(clock)
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return make(host, port, 0, std::move(handler));
    }
    std::unique_ptr<platform::Connection> sendFullPacket(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return make(host, port, kFullPacket, std::move(handler));
    }
    std::unique_ptr<platform::HopPath> pathTo(const QString& host) override;
    std::unique_ptr<platform::HopPath> watchedPathTo(
        const QString& host, const QString& interfaceName) override;

    /// The answer to one that starts now; absent: it is lost.
    std::function<std::optional<Answer>(const Made&)> script;

    /// All so far, the newest last. Empty with a script.
    const std::vector<std::shared_ptr<Made>>& made() const { return m_made; }
    /// Sends an event to the newest one, or to the one made `back` earlier.
    void tell(const platform::ConnectionEvent& event, size_t back = 0)
    {
        m_made.at(m_made.size() - 1 - back)->handler(event);
    }
    void tell(platform::ConnectionState state, const QString& error = {}, size_t back = 0)
    {
        tell({state, m_clock.monotonicNow(), error, {}}, back);
    }
    /// A good answer to the newest one, now.
    void answer(const QString& by)
    {
        tell({platform::ConnectionState::Ready, m_clock.monotonicNow(), {}, by});
    }

private:
    class Handle;
    class Path;
    std::unique_ptr<platform::Connection> make(const QString& host, quint16 port, int hopLimit,
        platform::ConnectionHandler handler, bool isWatched = false);
    void start(Made& made);

    base::Clock& m_clock;
    std::vector<std::shared_ptr<Made>> m_made;
};

} // namespace netvane::simulated
