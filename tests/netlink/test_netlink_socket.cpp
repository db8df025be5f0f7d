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
#include <cstring>
#include <deque>

using namespace netvane::base;
using namespace netvane::netlink;
using namespace netvane::test;

namespace {

constexpr quint16 kRecordType = 0x20;

/// One message on the wire; without `missing` bytes at its end.
struct Message {
    quint16 type = kRecordType;
    QByteArray payload;
    int flags = NLM_F_MULTI;
    int requestsAgo = 0;
    int missing = 0;
};
using Datagram = std::vector<Message>;
using Datagrams = std::deque<Datagram>;

Message record(quint32 number, int flags = NLM_F_MULTI, int missing = 0)
{
    return {.payload = raw(number), .flags = flags, .missing = missing};
}

Message done(int error = 0)
{
    return {.type = NLMSG_DONE, .payload = raw(-error)};
}

Message errorReply(int error, int missing = 0)
{
    return {NLMSG_ERROR, raw(-error) + QByteArray(NLMSG_HDRLEN, '\0'), 0, 0, missing};
}

constexpr int kInterrupted = NLM_F_MULTI | NLM_F_DUMP_INTR;

// The kernel's end of the socket. libnl's hooks carry no argument.
Datagrams g_datagrams; ///< after these the receive limit passes
bool g_isEndless = false; ///< the first one again and again
std::vector<quint32> g_requests; ///< sequence numbers

int sendToKernel(nl_sock*, nl_msg* message)
{
    g_requests.push_back(nlmsg_hdr(message)->nlmsg_seq);
    return int(nlmsg_hdr(message)->nlmsg_len);
}

int receiveFromKernel(nl_sock*, sockaddr_nl*, unsigned char** buffer, ucred**)
{
    if (g_datagrams.empty())
        return -NLE_AGAIN;
    QByteArray bytes;
    for (const Message& message : g_datagrams.front()) {
        const nlmsghdr header {.nlmsg_len = quint32(NLMSG_HDRLEN + message.payload.size()),
            .nlmsg_type = message.type,
            .nlmsg_flags = quint16(message.flags),
            .nlmsg_seq = g_requests.back() - quint32(message.requestsAgo)};
        bytes += (raw(header) + message.payload).chopped(message.missing);
    }
    if (!g_isEndless)
        g_datagrams.pop_front();
    *buffer = static_cast<unsigned char*>(std::malloc(size_t(bytes.size())));
    std::memcpy(*buffer, bytes.constData(), size_t(bytes.size()));
    return int(bytes.size());
}

} // namespace

class TestNetlinkSocket : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failures_data()
    {
        QTest::addColumn<Datagrams>("datagrams");
        QTest::addColumn<FailureKind>("kind");
        QTest::addColumn<int>("requests");
        const auto row = [](const char* name, FailureKind kind, const Datagrams& datagrams) {
            QTest::newRow(name) << datagrams << kind << 1;
        };
        row("ESRCH", FailureKind::NotFound, {{errorReply(ESRCH)}});
        row("EOPNOTSUPP", FailureKind::NotAvailable, {{errorReply(EOPNOTSUPP)}});
        row("EPERM", FailureKind::NotAllowed, {{errorReply(EPERM)}});
        row("EINVAL", FailureKind::Other, {{errorReply(EINVAL)}});
        row("failed halfway", FailureKind::NotAllowed, {{record(1)}, {done(EPERM)}});
        row("no end", FailureKind::TimedOut, {{record(1)}});
        row("cut record", FailureKind::TimedOut, {{record(1, NLM_F_MULTI, 4)}});
        row("cut header", FailureKind::TimedOut, {{record(1, NLM_F_MULTI, 10)}});
        row("cut error", FailureKind::TimedOut, {{errorReply(EPERM, 20)}});
        QTest::newRow("always interrupted")
            << Datagrams(10, {record(1, kInterrupted), done()}) << FailureKind::Interrupted << 3;
    }

    void failures()
    {
        QFETCH(Datagrams, datagrams);
        const auto answer = request(datagrams);
        QVERIFY(!answer);
        QTEST(answer.failure().kind, "kind");
        QTEST(int(g_requests.size()), "requests");
    }

    void interruptedDumpIsRequestedAgain()
    {
        QVERIFY(request({{record(1), record(2, kInterrupted)}, {done()}, // once
            {record(1, kInterrupted)}, {done()}, // twice
            {record(1), record(2)}, {record(3)}, {done()}, {record(4)}}));
        QCOMPARE(m_restarts, 2);
        QCOMPARE(m_records, (std::vector<quint32> {1, 2, 3}));
        QVERIFY(g_requests[0] != g_requests[1]);
    }

    /// The rest of an abandoned dump arrives during the next request.
    void lateAnswerIsIgnored()
    {
        Message late = record(2);
        Message lateEnd = done();
        late.requestsAgo = lateEnd.requestsAgo = 1;
        QVERIFY(request({{late}, {lateEnd}, {record(3)}, {done()}}));
        QCOMPARE(m_records, (std::vector<quint32> {3}));
    }

    void endless_data()
    {
        QTest::addColumn<Datagram>("datagram");
        QTest::newRow("messages") << Datagram(1000, record(1));
        QTest::newRow("no message") << Datagram {record(1, NLM_F_MULTI, 10)};
    }

    void endless()
    {
        QFETCH(Datagram, datagram);
        QVERIFY(!request({datagram}, true));
        QVERIFY(m_records.size() <= 200'000); // a scan table holds 1,000
    }

    /// The kernel itself, which got no request and so does not answer.
    void silence()
    {
        QElapsedTimer time;
        time.start();
        const auto answer = request({}, false, nullptr);
        QVERIFY(!answer);
        QCOMPARE(answer.failure().kind, FailureKind::TimedOut);
        QVERIFY(time.elapsed() >= NetlinkSocket::kReceiveTimeout.count() - 100);
    }

private:
    Result<std::monostate> request(const Datagrams& datagrams, bool isEndless = false,
        decltype(&receiveFromKernel) receive = receiveFromKernel)
    {
        g_datagrams = datagrams;
        g_isEndless = isEndless;
        g_requests.clear();
        m_records.clear();
        m_restarts = 0;
        auto socket = NetlinkSocket::open(NETLINK_GENERIC);
        nl_cb* callbacks = nl_socket_get_cb(socket.value().handle());
        nl_cb_overwrite_send(callbacks, sendToKernel);
        nl_cb_overwrite_recv(callbacks, receive);
        nl_cb_put(callbacks);
        const NetlinkMessage message(nlmsg_alloc_simple(kRecordType, NLM_F_DUMP));
        const auto take = [this](const nlmsghdr& answer) {
            quint32 number = 0;
            std::memcpy(&number, nlmsg_data(&answer), sizeof number);
            m_records.push_back(number);
        };
        return socket.value().request(*message, take, [this] {
            ++m_restarts;
            m_records.clear();
        });
    }

    std::vector<quint32> m_records;
    int m_restarts = 0;
};

NETVANE_TEST(TestNetlinkSocket)
#include "test_netlink_socket.moc"
