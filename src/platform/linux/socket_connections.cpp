#include "platform/linux/socket_connections.h"

#include "platform/linux/connection_watcher.h"
#include "platform/linux/tcp_handshake.h"
#include "platform/linux/udp_hop_probe.h"

#include <system_error>

namespace netvane::platform {
namespace {

/// The owner's end of a connection.
class SocketConnection : public Connection {
public:
    SocketConnection(
        const Clock& clock, std::shared_ptr<Mailbox> mailbox, quint64 id, OpenConnection connection)
        : m_clock(clock)
        , m_mailbox(std::move(mailbox))
        , m_id(id)
        , m_connection(std::make_shared<OpenConnection>(std::move(connection)))
    {
    }
    ~SocketConnection() override { SocketConnection::cancel(); }

    void start() override
    {
        if (m_isCancelled.test() || !m_connection)
            return;
        auto& attempt = *m_connection->attempt;
        attempt.setAddresses(addressesOfLiteral(m_connection->host, m_connection->port));
        attempt.askNext(m_clock);
        m_mailbox->post(
            [id = m_id, connection = std::move(m_connection)](
                ConnectionWatcher& watcher) { watcher.adopt(id, std::move(*connection)); });
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

    const Clock& m_clock;
    const std::shared_ptr<Mailbox> m_mailbox;
    const quint64 m_id;
    std::shared_ptr<OpenConnection> m_connection; ///< until it starts
    std::atomic_flag m_isCancelled;
};

/// As for its mailbox: a process that has no thread to spare when it begins gets nowhere.
std::jthread networkThread(std::shared_ptr<ConnectionWatcher> watcher)
{
    try {
        return std::jthread([watcher = std::move(watcher)] { watcher->run(); });
    } catch (const std::system_error&) {
        qFatal("No thread for the network");
    }
}

} // namespace

SocketConnections::SocketConnections(const Clock& clock, AddressLookup lookUp)
    : m_clock(clock)
    , m_mailbox(std::make_shared<Mailbox>())
    , m_thread(
          networkThread(std::make_shared<ConnectionWatcher>(clock, std::move(lookUp), m_mailbox)))
{
}

SocketConnections::~SocketConnections()
{
    m_mailbox->post([](ConnectionWatcher& watcher) { watcher.stop(); });
}

std::unique_ptr<Connection> SocketConnections::connectTcp(
    const QString& host, quint16 port, ConnectionHandler handler)
{
    return make(host, port, std::make_unique<TcpHandshake>(), std::move(handler));
}

std::unique_ptr<Connection> SocketConnections::probeHop(
    const QString& host, quint16 port, int hopLimit, ConnectionHandler handler)
{
    return make(host, port, std::make_unique<UdpHopProbe>(hopLimit), std::move(handler));
}

std::unique_ptr<Connection> SocketConnections::make(
    const QString& host, quint16 port, std::unique_ptr<Attempt> attempt, ConnectionHandler handler)
{
    return std::make_unique<SocketConnection>(m_clock, m_mailbox, ++m_lastId,
        OpenConnection {.host = host.toStdString(),
            .port = port,
            .handler = std::move(handler),
            .attempt = std::move(attempt)});
}

} // namespace netvane::platform
