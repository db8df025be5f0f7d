#include "netlink/netlink_socket.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

#include <QElapsedTimer>
#include <QTest>

#include <linux/netlink.h>
#include <netlink/handlers.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <optional>
#include <thread>

using namespace netvane::base;
using namespace netvane::netlink;
using namespace netvane::test;

namespace {

constexpr quint16 kRecordType = 0x20;

/// One message on the wire; `late` belongs to the request before the last one, and `missing` bytes
/// of it are lost.
struct Message {
    quint16 type = kRecordType;
    QByteArray payload;
    quint16 flags = NLM_F_MULTI;
    bool late = false;
    int missing = 0;

    QByteArray bytes(quint32 sequence) const
    {
        const QByteArray whole = raw(quint32(NLMSG_HDRLEN + payload.size())) + raw(type)
            + raw(flags) + raw(late ? sequence - 1 : sequence) + raw(quint32(0)) + payload;
        return whole.chopped(missing);
    }
};

using Datagram = std::vector<Message>;

Message record(quint32 number)
{
    return {.payload = raw(number)};
}

Message done(int error = 0)
{
    return {.type = NLMSG_DONE, .payload = raw(-error)};
}

Message errorReply(int error)
{
    return {
        .type = NLMSG_ERROR, .payload = raw(-error) + QByteArray(NLMSG_HDRLEN, '\0'), .flags = 0};
}

Message interrupted(Message message)
{
    message.flags |= NLM_F_DUMP_INTR;
    return message;
}

/// The kernel's end of the socket: plays the datagrams, then nothing comes any more in time.
struct Kernel {
    std::deque<Datagram> datagrams;
    bool endless = false; ///< the first one again and again
    std::chrono::milliseconds pause {0}; ///< before each
    std::vector<quint32> requests; ///< sequence numbers
};
Kernel* g_kernel = nullptr; // libnl's hooks carry no argument

int sendToKernel(nl_sock*, nl_msg* message)
{
    g_kernel->requests.push_back(nlmsg_hdr(message)->nlmsg_seq);
    return int(nlmsg_hdr(message)->nlmsg_len);
}

int receiveFromKernel(nl_sock*, sockaddr_nl*, unsigned char** buffer, ucred**)
{
    std::this_thread::sleep_for(g_kernel->pause);
    if (g_kernel->datagrams.empty())
        return -NLE_AGAIN;
    QByteArray bytes;
    for (const Message& message : g_kernel->datagrams.front())
        bytes += message.bytes(g_kernel->requests.back());
    if (!g_kernel->endless)
        g_kernel->datagrams.pop_front();
    *buffer = static_cast<unsigned char*>(std::malloc(size_t(bytes.size())));
    std::memcpy(*buffer, bytes.constData(), size_t(bytes.size()));
    return int(bytes.size());
}

} // namespace

class TestNetlinkSocket : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        auto opened = NetlinkSocket::open(NETLINK_GENERIC);
        QVERIFY(opened);
        m_socket.emplace(std::move(opened.value()));
        nl_cb* callbacks = nl_socket_get_cb(m_socket->handle());
        nl_cb_overwrite_send(callbacks, sendToKernel);
        nl_cb_overwrite_recv(callbacks, receiveFromKernel);
        nl_cb_put(callbacks);
        m_kernel = {};
        g_kernel = &m_kernel;
        m_records.clear();
        m_restarts = 0;
    }

    void dumpInSeveralDatagrams()
    {
        m_kernel.datagrams = {{record(1), record(2)}, {record(3)}, {done()}, {record(4)}};
        QVERIFY(request());
        QCOMPARE(m_records, (std::vector<quint32> {1, 2, 3}));
        QCOMPARE(m_restarts, 0);
    }

    void failures_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<FailureKind>("kind");
        QTest::newRow("ESRCH") << ESRCH << FailureKind::NotFound;
        QTest::newRow("EOPNOTSUPP") << EOPNOTSUPP << FailureKind::NotAvailable;
        QTest::newRow("EPERM") << EPERM << FailureKind::NotAllowed;
        QTest::newRow("EAGAIN") << EAGAIN << FailureKind::TimedOut;
        QTest::newRow("EINVAL") << EINVAL << FailureKind::Other;
    }

    void failures()
    {
        QFETCH(int, error);
        m_kernel.datagrams = {{errorReply(error)}};
        const auto refused = request();
        QVERIFY(!refused);
        QTEST(refused.failure().kind, "kind");
        // A dump that fails on its way says so in its last message.
        m_kernel.datagrams = {{record(1)}, {done(error)}};
        const auto brokenOff = request();
        QVERIFY(!brokenOff);
        QTEST(brokenOff.failure().kind, "kind");
        QCOMPARE(m_records, (std::vector<quint32> {1}));
        QCOMPARE(m_restarts, 0);
    }

    void interruptedDumpIsAskedAgain()
    {
        m_kernel.datagrams = {{record(1), interrupted(record(2))}, {done()}, // once
            {interrupted(record(1))}, {interrupted(done())}, // twice
            {record(1), record(2)}, {record(3), done()}};
        QVERIFY(request());
        QCOMPARE(m_restarts, 2);
        QCOMPARE(m_records, (std::vector<quint32> {1, 2, 3}));
        QCOMPARE(m_kernel.requests.size(), 3);
        QVERIFY(m_kernel.requests[0] != m_kernel.requests[1]);
    }

    void dumpThatIsAlwaysInterrupted()
    {
        for (int i = 0; i < 10; ++i)
            m_kernel.datagrams.push_back({interrupted(record(1)), done()});
        const auto answer = request();
        QVERIFY(!answer);
        QCOMPARE(answer.failure().kind, FailureKind::Interrupted);
        QCOMPARE(m_kernel.requests.size(), 3);
        QCOMPARE(m_restarts, 2);
    }

    void truncated_data()
    {
        QTest::addColumn<int>("missing");
        QTest::addColumn<bool>("isError");
        QTest::addColumn<FailureKind>("kind");
        QTest::newRow("record") << 4 << false << FailureKind::TimedOut;
        QTest::newRow("record's header") << 10 << false << FailureKind::TimedOut;
        QTest::newRow("error") << 20 << true << FailureKind::TimedOut;
    }

    void truncated()
    {
        QFETCH(int, missing);
        QFETCH(bool, isError);
        Message broken = isError ? errorReply(EPERM) : record(2);
        broken.missing = missing;
        m_kernel.datagrams = {{record(1), broken}};
        const auto answer = request();
        QVERIFY(!answer);
        QTEST(answer.failure().kind, "kind");
        QCOMPARE(m_records, (std::vector<quint32> {1}));
    }

    /// The rest of a dump that was given up on comes when the next one is waited for.
    void lateAnswerIsNotTakenForTheNext()
    {
        m_kernel.datagrams = {{record(1)}};
        QVERIFY(!request());
        m_records.clear();
        Message late = record(2);
        late.late = true;
        Message lateEnd = done();
        lateEnd.late = true;
        m_kernel.datagrams = {{late}, {lateEnd}, {record(3)}, {done()}};
        QVERIFY(request());
        QCOMPARE(m_records, (std::vector<quint32> {3}));
    }

    void endless_data()
    {
        QTest::addColumn<Datagram>("datagram");
        QTest::addColumn<int>("pauseMs");
        Message stump = record(1);
        stump.missing = 10;
        QTest::newRow("messages") << Datagram(1000, record(1)) << 0;
        QTest::newRow("slow messages") << Datagram {record(1)} << 20;
        QTest::newRow("what is no message") << Datagram {stump} << 20;
    }

    void endless()
    {
        QFETCH(Datagram, datagram);
        QFETCH(int, pauseMs);
        m_kernel.datagrams = {datagram};
        m_kernel.endless = true;
        m_kernel.pause = std::chrono::milliseconds(pauseMs);
        QElapsedTimer time;
        time.start();
        QVERIFY(!request());
        QVERIFY(time.elapsed() < 6'000);
        QVERIFY(m_records.size() <= 200'000); // a scan table holds 1,000
    }

    /// With the kernel's real end, which is asked nothing and so says nothing.
    void silence()
    {
        nl_cb* callbacks = nl_socket_get_cb(m_socket->handle());
        nl_cb_overwrite_recv(callbacks, nullptr);
        nl_cb_put(callbacks);
        QElapsedTimer time;
        time.start();
        const auto answer = request();
        QVERIFY(!answer);
        QCOMPARE(answer.failure().kind, FailureKind::TimedOut);
        QVERIFY(time.elapsed() < 2 * NetlinkSocket::kReceiveTimeout.count());
    }

private:
    Result<std::monostate> request()
    {
        const NetlinkMessage message(nlmsg_alloc_simple(kRecordType, NLM_F_DUMP));
        const auto take = [this](const nlmsghdr& answer) {
            quint32 number = 0;
            std::memcpy(&number, nlmsg_data(&answer), sizeof number);
            m_records.push_back(number);
        };
        const auto restart = [this] {
            ++m_restarts;
            m_records.clear();
        };
        return m_socket->request(*message, take, restart);
    }

    Kernel m_kernel;
    std::optional<NetlinkSocket> m_socket;
    std::vector<quint32> m_records;
    int m_restarts = 0;
};

NETVANE_TEST(TestNetlinkSocket)
#include "test_netlink_socket.moc"
