#include "net/watched_connections.h"

#include "net/connection_watcher.h"

#include <atomic>
#include <utility>

namespace netvane::net {
namespace {

/// The owner's end of a connection.
class WatchedConnection : public platform::Connection {
public:
    WatchedConnection(const base::Clock& clock, std::shared_ptr<Mailbox> mailbox,
        const std::function<void()>& lookLater, quint64 id, OpenConnection connection)
        : m_clock(clock)
        , m_mailbox(std::move(mailbox))
        , m_lookLater(lookLater)
        , m_id(id)
        , m_connection(std::make_shared<OpenConnection>(std::move(connection)))
    {
    }
    ~WatchedConnection() override { WatchedConnection::cancel(); }

    void start() override
    {
        if (m_isCancelled.test() || !m_connection)
            return;
        auto& attempt = *m_connection->attempt;
        attempt.setAddresses(addressesOfLiteral(m_connection->host, m_connection->port));
        attempt.askNext(m_clock);
        const bool isAwaited = attempt.isUnderWay() && !attempt.answeredAt();
        const auto letter
            = [id = m_id, connection = std::exchange(m_connection, {})](
                  ConnectionWatcher& watcher) { watcher.adopt(id, std::move(*connection)); };
        if (isAwaited && m_lookLater) {
            m_mailbox->leave(letter);
            m_lookLater();
        } else {
            m_mailbox->post(letter);
        }
        // One that came from another thread in the meantime found nothing to cancel.
        if (m_isCancelled.test())
            postCancel();
    }

    void cancel() override
    {
        if (!m_isCancelled.test_and_set())
            postCancel();
    }

private:
    void postCancel()
    {
        m_mailbox->post([id = m_id](ConnectionWatcher& watcher) { watcher.cancel(id); });
    }

    const base::Clock& m_clock;
    const std::shared_ptr<Mailbox> m_mailbox;
    const std::function<void()> m_lookLater;
    const quint64 m_id;
    std::shared_ptr<OpenConnection> m_connection; ///< until it starts
    std::atomic_flag m_isCancelled;
};

} // namespace

WatchedConnections::WatchedConnections(
    const base::Clock& clock, AddressLookup lookUp, std::function<void()> lookLater)
    : m_clock(clock)
    , m_mailbox(std::make_shared<Mailbox>())
    , m_watcher(std::make_shared<ConnectionWatcher>(clock, std::move(lookUp), m_mailbox))
    , m_lookLater(std::move(lookLater))
{
}

void WatchedConnections::stop()
{
    m_mailbox->post([](ConnectionWatcher& watcher) { watcher.stop(); });
}

std::unique_ptr<platform::Connection> WatchedConnections::make(const QString& host, quint16 port,
    std::unique_ptr<Attempt> attempt, platform::ConnectionHandler handler)
{
    return std::make_unique<WatchedConnection>(m_clock, m_mailbox, m_lookLater, ++m_lastId,
        OpenConnection {.host = host.toStdString(),
            .port = port,
            .handler = std::move(handler),
            .attempt = std::move(attempt)});
}

} // namespace netvane::net
