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
    void resetAll()
    {
        constexpr linger atOnce {.l_onoff = 1, .l_linger = 0};
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        acceptAll(); // what it accepts inherits that
    }

private:
    FileDescriptor m_socket;
    quint16 m_port = 0;
};

/// What a connection told.
class Story {
public:
    ConnectionHandler handler()
    {
        return [this](const ConnectionEvent& event) { m_events.push_back(event); };
    }

    /// Waits for `count` events and returns what there is.
    std::vector<ConnectionEvent> events(size_t count)
    {
        (void)QTest::qWaitFor([&] { return m_events.size() >= count; }, 20'000);
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
    std::vector<ConnectionEvent> m_events;
};

/// A thread that was with the resolver for an earlier test may still hold one or two.
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
    /// The stamp is not that of the handler's turn, and what was asked for in the meantime is done
    /// in its order.
    void busyMainThread()
    {
        Peer peer(8);
        Story story;
        Story later;
        SocketConnections connections(m_clock, noLookUp);
        const auto timed = connections.connectTcp(u"127.0.0.1"_s, peer.port(), story.handler());
        const auto before = m_clock.monotonicNow();
        timed->start();
        const auto sent = m_clock.monotonicNow();
        const auto other = connections.connectTcp(u"127.0.0.1"_s, peer.port(), later.handler());
        other->start();
        other->cancel();
        QVERIFY(story.states(0).empty()); // nothing is told inside a call
        QCOMPARE(later.states(1), States {State::Cancelled});
        const auto ready = story.events(1).at(0);
        QCOMPARE(ready.state, State::Ready);
        QVERIFY(before <= ready.at && ready.at <= sent);
    }

    /// Once its queue is full, the kernel drops what asks to be let in; it asks again after a
    /// second, and that second counts.
    void silentPeer()
    {
        Peer peer(0);
        Story filler;
        Story patient;
        Story cancelled;
        SocketConnections connections(m_clock, noLookUp);
        const auto connect = [&](Story& story) {
            auto made = connections.connectTcp(u"127.0.0.1"_s, peer.port(), story.handler());
            made->start();
            return made;
        };
        const auto first = connect(filler);
        QCOMPARE(filler.states(1), States {State::Ready});
        const auto begin = m_clock.monotonicNow();
        const auto second = connect(patient);
        auto third = connect(cancelled);
        third.reset();
        QCOMPARE(cancelled.states(1), States {State::Cancelled});
        QCOMPARE(patient.states(0), States {});
        peer.acceptAll();
        QCOMPARE(patient.states(1), States {State::Ready});
        QVERIFY(patient.events(0).at(0).at - begin > 900ms);
    }

    /// It answered all the same.
    void peerThatClosesAtOnce()
    {
        Peer peer(8);
        Story story;
        SocketConnections connections(m_clock, noLookUp);
        const auto made = connections.connectTcp(u"127.0.0.1"_s, peer.port(), story.handler());
        made->start();
        peer.resetAll();
        QCOMPARE(story.states(1), States {State::Ready});
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
        const States ready {State::Ready};
        const States failed {State::Failed};
        QTest::newRow("closed port")
            << u"127.0.0.1"_s << unknown << failed << u"Connection refused"_s;
        QTest::newRow("no route") << u"255.255.255.255"_s << unknown << failed
                                  << u"Network is unreachable"_s;
        QTest::newRow("name") << name << HostAddresses {{good}, {}} << ready << QString();
        QTest::newRow("second of two")
            << name << HostAddresses {{bad, good}, {}} << ready << QString();
        QTest::newRow("none of two")
            << name << HostAddresses {{bad, bad}, {}} << failed << u"Connection refused"_s;
        QTest::newRow("no such name")
            << name << unknown << failed << u"Name or service not known"_s;
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
            QTRY_COMPARE(hung->available(), 2);
            other->cancel();
            QCOMPARE(literal.states(1), States {State::Ready});
            QCOMPARE(cancelled.states(1), States {State::Cancelled});
        }
        QCOMPARE(named.states(1), States {State::Cancelled});
        letGo->release(2);
        stuck.reset();
        QTRY_VERIFY(openDescriptors() <= before);
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
                    QVERIFY(!story.events(1).empty());
                open.acceptAll();
                for (size_t i = 0; i < made.size(); i += 3) {
                    made[i].reset();
                    QCOMPARE(stories[i].states(2).back(), State::Cancelled);
                }
            }
        }
        QTRY_VERIFY(openDescriptors() <= before); // threads with the resolver end by themselves
    }

private:
    SystemClock m_clock;
    Peer m_listening {64};
    Peer m_closed;
};

NETVANE_TEST(TestSocketConnections)
#include "test_socket_connections.moc"
