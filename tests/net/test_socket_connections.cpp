#include "base/file_descriptor.h"
#include "base/system_clock.h"
#include "net/socket_connections.h"
#include "support/test_main.h"

#include <QDir>
#include <QSemaphore>
#include <QTest>

#include <netinet/in.h>

using namespace netvane::base;
using namespace netvane::net;
using namespace netvane::platform;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using State = ConnectionState;
using States = std::vector<State>;

namespace {

/// A TCP socket on a free port of the loopback interface; refuses unless it listens.
class Peer {
public:
    explicit Peer(bool isListening = true)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0))
    {
        auto* generic = reinterpret_cast<sockaddr*>(&address.storage);
        if (::bind(m_socket.get(), generic, address.length) != 0
            || ::getsockname(m_socket.get(), generic, &address.length) != 0)
            qFatal("no loopback");
        constexpr linger atOnce {.l_onoff = 1, .l_linger = 0}; // inherited by what it accepts
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        if (isListening)
            ::listen(m_socket.get(), 64);
    }
    quint16 port() const
    {
        return ntohs(reinterpret_cast<const sockaddr_in*>(&address.storage)->sin_port);
    }
    /// And resets them.
    void acceptAll()
    {
        while (FileDescriptor(::accept(m_socket.get(), nullptr, nullptr)).isOpen()) { }
    }

    SocketAddress address = addressesOfLiteral("127.0.0.1", 0).at(0);

private:
    FileDescriptor m_socket;
};

/// One started connection and its events.
struct Started {
    using Events = std::vector<ConnectionEvent>;

    Started(SocketConnections& connections, const QString& host, quint16 port)
        : connection(connections.connectTcp(
            host, port, [all = all](const ConnectionEvent& event) { all->push_back(event); }))
    {
        connection->start();
    }

    /// Waits for an event and returns the states of those that there are.
    States states()
    {
        (void)QTest::qWaitFor([&] { return !all->empty(); }, 20'000);
        States states;
        for (const auto& event : *all)
            states.push_back(event.state);
        return states;
    }

    std::shared_ptr<Events> all = std::make_shared<Events>(); ///< a connection outlives its owner
    std::unique_ptr<Connection> connection;
};

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System).size();
}

const QString kLoopback = u"127.0.0.1"_s;
const States kReady {State::Ready};
const States kCancelled {State::Cancelled};

} // namespace

class TestSocketConnections : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The stamp is not that of the handler's turn.
    void busyMainThread()
    {
        Peer peer;
        const auto before = m_clock.monotonicNow();
        Started timed(m_connections, kLoopback, peer.port());
        const auto sent = m_clock.monotonicNow();
        Started other(m_connections, kLoopback, peer.port());
        other.connection->cancel();
        QVERIFY(timed.all->empty()); // no event inside a call
        QCOMPARE(other.states(), kCancelled);
        QCOMPARE(timed.states(), kReady);
        QVERIFY(before <= timed.all->at(0).at && timed.all->at(0).at <= sent);
    }

    /// It answered all the same.
    void peerThatClosesAtOnce()
    {
        Peer peer;
        Started started(m_connections, kLoopback, peer.port());
        peer.acceptAll();
        QCOMPARE(started.states(), kReady);
    }

    void addresses_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<HostAddresses>("found");
        QTest::addColumn<QString>("error");
        const QString name = u"peer.example"_s;
        const QString unreachable = u"Network is unreachable"_s;
        const auto good = m_listening.address;
        const auto bad = addressesOfLiteral("255.255.255.255", 80).at(0); // takes no connections
        QTest::newRow("closed port") << kLoopback << HostAddresses {{}, "not asked"} << QString();
        QTest::newRow("unreachable") << name << HostAddresses {{bad}, {}} << unreachable;
        QTest::newRow("second of two") << name << HostAddresses {{bad, good}, {}} << QString();
        QTest::newRow("no such name") << name << HostAddresses {{}, "unknown"} << u"unknown"_s;
    }
    void addresses()
    {
        QFETCH(QString, host);
        QFETCH(HostAddresses, found);
        QFETCH(QString, error);
        SocketConnections connections(
            m_clock, [found](const std::string&, std::uint16_t) { return found; });
        Started started(connections, host, m_closed.port());
        QCOMPARE(started.states(), States {error.isEmpty() ? State::Ready : State::Failed});
        QCOMPARE(started.all->at(0).error, error);
    }

    /// Neither other connections nor the end of the program wait for a resolver that hangs.
    void hangingResolver()
    {
        const auto letGo = std::make_shared<QSemaphore>();
        const auto hung = std::make_shared<QSemaphore>();
        const auto before = openDescriptors();
        auto connections
            = std::make_unique<SocketConnections>(m_clock, [=](const std::string&, std::uint16_t) {
                  hung->release();
                  letGo->acquire();
                  return HostAddresses {};
              });
        Started stuck(*connections, u"a.example"_s, 80);
        Started cancelled(*connections, u"b.example"_s, 80);
        Started literal(*connections, kLoopback, m_listening.port());
        QTRY_COMPARE(hung->available(), 2);
        cancelled.connection->cancel();
        QCOMPARE(literal.states(), kReady);
        QCOMPARE(cancelled.states(), kCancelled);
        connections.reset();
        QCOMPARE(stuck.states(), kCancelled);
        letGo->release(2);
        stuck.connection.reset();
        literal.connection.reset();
        QTRY_VERIFY(openDescriptors() <= before); // threads with the resolver end by themselves
    }

private:
    SystemClock m_clock;
    SocketConnections m_connections {m_clock};
    Peer m_listening;
    Peer m_closed {false};
};

NETVANE_TEST(TestSocketConnections)
#include "test_socket_connections.moc"
