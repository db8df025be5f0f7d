#include "netlink/netlink_socket.h"
#include "support/netlink_bytes.h"
#include "support/test_main.h"

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

struct Message {
    quint16 type = kRecordType;
    QByteArray payload;
    int flags = NLM_F_MULTI;
    int requestsAgo = 0;
};
using Datagram = std::vector<Message>;
using Datagrams = std::deque<Datagram>;

Message record(quint32 number, int flags = NLM_F_MULTI)
{
    return {kRecordType, raw(number), flags};
}

Message done(int error = 0)
{
    return {NLMSG_DONE, raw(-error)};
}

constexpr int kInterrupted = NLM_F_MULTI | NLM_F_DUMP_INTR;

// The kernel's end of the socket. libnl's hooks carry no argument.
Datagrams g_datagrams; ///< after these the receive limit passes
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
        bytes += raw(header) + message.payload;
    }
    g_datagrams.pop_front();
    *buffer = static_cast<unsigned char*>(std::malloc(size_t(bytes.size())));
    std::memcpy(*buffer, bytes.constData(), size_t(bytes.size()));
    return int(bytes.size());
}

} // namespace

class TestNetlinkSocket : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failures()
    {
        const Message refusal {NLMSG_ERROR, raw(-EPERM) + QByteArray(NLMSG_HDRLEN, '\0'), 0};
        const std::pair<FailureKind, Datagrams> rows[] = {{FailureKind::NotAllowed, {{refusal}}},
            {FailureKind::NotAllowed, {{record(1)}, {done(EPERM)}}}, // halfway
            {FailureKind::TimedOut, {{record(1)}}},
            {FailureKind::Other, Datagrams(200, Datagram(1000, record(1)))}, // endless
            {FailureKind::Interrupted, Datagrams(10, {record(1, kInterrupted), done()})}};
        for (const auto& [kind, datagrams] : rows) {
            const auto answer = request(datagrams);
            QVERIFY(!answer);
            QCOMPARE(answer.failure().kind, kind);
            QCOMPARE(g_requests.size(), kind == FailureKind::Interrupted ? 3U : 1U);
        }
    }

    /// The rest of an abandoned dump arrives during the next request.
    void interruptedDumpIsRequestedAgain()
    {
        Message late = record(9);
        late.requestsAgo = 1;
        QVERIFY(request({{record(1), record(2, kInterrupted)}, {done()}, // once
            {late, record(1, kInterrupted)}, {done()}, // twice
            {late, record(1), record(2)}, {record(3)}, {done()}, {record(4)}}));
        QCOMPARE(g_requests.size(), 3U);
        QCOMPARE(m_records, (std::vector<quint32> {1, 2, 3}));
        QVERIFY(g_requests[0] != g_requests[1]);
    }

private:
    Result<std::monostate> request(const Datagrams& datagrams)
    {
        g_datagrams = datagrams;
        g_requests.clear();
        m_records.clear();
        auto socket = NetlinkSocket::open(NETLINK_GENERIC);
        nl_cb* callbacks = nl_socket_get_cb(socket.value().handle());
        nl_cb_overwrite_send(callbacks, sendToKernel);
        nl_cb_overwrite_recv(callbacks, receiveFromKernel);
        nl_cb_put(callbacks);
        const NetlinkMessage message(nlmsg_alloc_simple(kRecordType, NLM_F_DUMP));
        const auto take = [this](const nlmsghdr& answer) {
            quint32 number = 0;
            std::memcpy(&number, nlmsg_data(&answer), sizeof number);
            m_records.push_back(number);
        };
        return socket.value().request(*message, take, [this] { m_records.clear(); });
    }

    std::vector<quint32> m_records;
};

NETVANE_TEST(TestNetlinkSocket)
#include "test_netlink_socket.moc"
