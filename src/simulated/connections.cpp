#include "simulated/connections.h"

namespace netvane::simulated {

class Connections::Handle : public platform::Connection {
public:
    Handle(Connections& factory, std::shared_ptr<Made> made)
        : m_factory(factory)
        , m_made(std::move(made))
    {
    }
    ~Handle() override { Handle::cancel(); }

    void start() override { m_factory.start(*m_made); }
    void cancel() override
    {
        m_made->isCancelled = true;
        m_made->timer.reset();
    }

private:
    Connections& m_factory;
    const std::shared_ptr<Made> m_made;
};

class Connections::Path : public platform::HopPath {
public:
    Path(Connections& factory, QString host, bool isWatched)
        : m_factory(factory)
        , m_host(std::move(host))
        , m_isWatched(isWatched)
    {
    }

    std::unique_ptr<platform::Connection> probe(
        quint16 port, int hopLimit, platform::ConnectionHandler handler) override
    {
        return m_factory.make(m_host, port, hopLimit, std::move(handler), m_isWatched);
    }

private:
    Connections& m_factory;
    const QString m_host;
    const bool m_isWatched;
};

std::unique_ptr<platform::HopPath> Connections::pathTo(const QString& host)
{
    return std::make_unique<Path>(*this, host, false);
}

std::unique_ptr<platform::HopPath> Connections::watchedPathTo(const QString& host, const QString&)
{
    return std::make_unique<Path>(*this, host, true);
}

std::unique_ptr<platform::Connection> Connections::make(const QString& host, quint16 port,
    int hopLimit, platform::ConnectionHandler handler, bool isWatched)
{
    auto made = std::make_shared<Made>();
    made->host = host;
    made->port = port;
    made->hopLimit = hopLimit;
    made->isWatched = isWatched;
    made->handler = std::move(handler);
    if (!script)
        m_made.push_back(made);
    return std::make_unique<Handle>(*this, std::move(made));
}

void Connections::start(Made& made)
{
    made.isStarted = true;
    const auto answer = script ? script(made) : std::nullopt;
    if (!answer)
        return;
    const platform::ConnectionEvent ready {platform::ConnectionState::Ready,
        m_clock.monotonicNow() + answer->time, {}, answer->by, {}, answer->retransmissions};
    made.timer = m_clock.after(std::chrono::ceil<std::chrono::milliseconds>(answer->time),
        [handler = made.handler, ready] { handler(ready); });
}

} // namespace netvane::simulated
