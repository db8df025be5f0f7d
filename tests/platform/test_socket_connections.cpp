#include "platform/linux/file_descriptor.h"
#include "platform/linux/socket_connections.h"
#include "platform/system_clock.h"

#include <QDir>
#include <QSemaphore>
#include <QTest>

#include <netinet/in.h>

#include <condition_variable>
#include <mutex>

using namespace netvane::platform;
using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

using State = ConnectionState;
using States = std::vector<State>;

namespace {

/// A TCP socket on a free port of the loopback interface; refuses unless it listens.
class Peer {
public:
    explicit Peer(std::optional<int> backlog = {})
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0))
    {
        auto address = addressesOfLiteral("127.0.0.1", 0).at(0);
        auto* generic = reinterpret_cast<sockaddr*>(&address.storage);
        if (::bind(m_socket.get(), generic, address.length) != 0
            || ::getsockname(m_socket.get(), generic, &address.length) != 0)
            qFatal("no loopback");
        m_port = ntohs(reinterpret_cast<sockaddr_in*>(generic)->sin_port);
        if (backlog)
            ::listen(m_socket.get(), *backlog);
    }

    quint16 port() const { return m_port; }
    void acceptAll()
    {
        while (FileDescriptor(::accept(m_socket.get(), nullptr, nullptr)).isOpen()) { }
    }

private:
    FileDescriptor m_socket;
    quint16 m_port = 0;
};

/// What a connection told, read by the test's thread.
class Story {
public:
    ConnectionHandler handler()
    {
        return [this](const ConnectionEvent& event) {
            const std::lock_guard guard(m_mutex);
            m_events.push_back(event);
            m_changed.notify_all();
        };
    }

    /// Waits for `count` events and returns what there is.
    std::vector<ConnectionEvent> events(size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, 20s, [&] { return m_events.size() >= count; });
        return m_events;
    }
    States states(size_t count)
    {
        States states;
        for (const auto& event : events(count))
            states.push_back(event.state);
        return states;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<ConnectionEvent> m_events;
};

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System).size();
}

HostAddresses noLookUp(const std::string& host, std::uint16_t)
{
    qFatal("%s was looked up", host.c_str());
}

} // namespace

class TestSocketConnections : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The stamp is the kernel's report, not the handler's turn, and what was asked of the thread
    /// in the meantime is done in its order.
    void busyNetworkThread()
    {
        Peer peer(8);
        Story story;
        Story later;
        QSemaphore letGo;
        SocketConnections connections(m_clock, noLookUp);
        const auto blocking = connections.connectTcp(
            u"127.0.0.1"_s, peer.port(), [&, tell = story.handler()](const ConnectionEvent& event) {
                if (event.state == State::Waiting)
                    letGo.acquire();
                tell(event);
            });
        const auto before = m_clock.monotonicNow();
        blocking->start();
        const auto sent = m_clock.monotonicNow();
        const auto other = connections.connectTcp(u"127.0.0.1"_s, peer.port(), later.handler());
        other->start();
        other->cancel();
        letGo.release();
        QCOMPARE(later.states(3), (States {State::Waiting, State::Ready, State::Cancelled}));
        const auto ready = story.events(2).at(1);
        QCOMPARE(ready.state, State::Ready);
        QVERIFY(before <= ready.at && ready.at <= sent);
    }

    void silentPeerKeepsWaitingUntilCancelled()
    {
        Peer peer(0);
        Story fillers;
        Story story;
        SocketConnections connections(m_clock, noLookUp);
        // Once its queue is full, the kernel drops what asks to be let in.
        const auto filler = connections.connectTcp(u"127.0.0.1"_s, peer.port(), fillers.handler());
        filler->start();
        QCOMPARE(fillers.states(2), (States {State::Waiting, State::Ready}));
        auto connection = connections.connectTcp(u"127.0.0.1"_s, peer.port(), story.handler());
        connection->start();
        QCOMPARE(story.states(1), States {State::Waiting});
        connection.reset();
        QCOMPARE(story.states(2), (States {State::Waiting, State::Cancelled}));
    }

    void addresses_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<HostAddresses>("found");
        QTest::addColumn<States>("states");
        QTest::addColumn<QString>("error");
        const auto good = addressesOfLiteral("127.0.0.1", m_listening.port()).at(0);
        const auto bad = addressesOfLiteral("127.0.0.1", m_closed.port()).at(0);
        const HostAddresses unknown {{}, "Name or service not known"};
        const QString name = u"peer.example"_s;
        const States ready {State::Preparing, State::Waiting, State::Ready};
        const States failed {State::Preparing, State::Waiting, State::Failed};
        QTest::newRow("closed port")
            << u"127.0.0.1"_s << unknown << States {State::Waiting, State::Failed}
            << u"Connection refused"_s;
        QTest::newRow("no route") << u"255.255.255.255"_s << unknown << States {State::Failed}
                                  << u"Network is unreachable"_s;
        QTest::newRow("name") << name << HostAddresses {{good}, {}} << ready << QString();
        QTest::newRow("second of two")
            << name << HostAddresses {{bad, good}, {}} << ready << QString();
        QTest::newRow("none of two")
            << name << HostAddresses {{bad, bad}, {}} << failed << u"Connection refused"_s;
        QTest::newRow("no such name") << name << unknown << States {State::Preparing, State::Failed}
                                      << u"Name or service not known"_s;
    }
    void addresses()
    {
        QFETCH(QString, host);
        QFETCH(HostAddresses, found);
        QFETCH(States, states);
        Story story;
        SocketConnections connections(
            m_clock, [found](const std::string&, std::uint16_t) { return found; });
        const auto connection = connections.connectTcp(host, m_closed.port(), story.handler());
        connection->start();
        QCOMPARE(story.states(states.size()), states);
        QTEST(story.events(0).back().error, "error");
    }

    /// Neither other connections nor the end of the program wait for a resolver that hangs.
    void hangingResolver()
    {
        const auto letGo = std::make_shared<QSemaphore>();
        const auto hung = std::make_shared<QSemaphore>();
        Peer peer(8);
        const auto before = openDescriptors();
        Story named;
        Story cancelled;
        Story literal;
        std::unique_ptr<Connection> stuck;
        {
            SocketConnections connections(m_clock, [=](const std::string&, std::uint16_t) {
                hung->release();
                letGo->acquire();
                return HostAddresses {};
            });
            stuck = connections.connectTcp(u"a.example"_s, 80, named.handler());
            const auto other = connections.connectTcp(u"b.example"_s, 80, cancelled.handler());
            const auto quick
                = connections.connectTcp(u"127.0.0.1"_s, peer.port(), literal.handler());
            stuck->start();
            other->start();
            quick->start();
            hung->acquire(2);
            other->cancel();
            QCOMPARE(literal.states(2), (States {State::Waiting, State::Ready}));
            QCOMPARE(cancelled.states(2), (States {State::Preparing, State::Cancelled}));
        }
        QCOMPARE(named.states(2), (States {State::Preparing, State::Cancelled}));
        letGo->release(2);
        stuck.reset();
        QTRY_COMPARE(openDescriptors(), before);
    }

    /// A thousand probes of every kind leave no descriptor behind.
    void nothingLeaks()
    {
        const auto before = openDescriptors();
        {
            Peer open(128);
            Peer closed;
            SocketConnections connections(m_clock, [](const std::string&, std::uint16_t) {
                return HostAddresses {{}, "no"};
            });
            const QString hosts[] = {u"127.0.0.1"_s, u"127.0.0.1"_s, u"name.example"_s};
            const quint16 ports[] = {open.port(), closed.port(), open.port()};
            for (int round = 0; round < 100; ++round) {
                std::vector<Story> stories(10);
                std::vector<std::unique_ptr<Connection>> made;
                for (size_t i = 0; i < stories.size(); ++i) {
                    made.push_back(
                        connections.connectTcp(hosts[i % 3], ports[i % 3], stories[i].handler()));
                    made.back()->start();
                }
                made[8].reset(); // in the middle of its lookup, or after it
                for (auto& story : stories)
                    QVERIFY(story.events(2).back().state >= State::Ready);
                open.acceptAll();
                for (size_t i = 0; i < made.size(); i += 3) {
                    made[i].reset();
                    QCOMPARE(stories[i].states(3).back(), State::Cancelled);
                }
            }
        }
        QTRY_COMPARE(openDescriptors(), before); // threads with the resolver end by themselves
    }

private:
    SystemClock m_clock;
    Peer m_listening {64};
    Peer m_closed;
};

QTEST_GUILESS_MAIN(TestSocketConnections)
#include "test_socket_connections.moc"
