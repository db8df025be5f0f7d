#include "netlink/netlink_socket.h"

#include <netlink/errno.h>
#include <netlink/genl/genl.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cstring>

namespace netvane::netlink {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int kTries = 3;
// Protects against a driver whose list never ends. A scan table holds a thousand networks, and the
// default routes are the first of all routes.
constexpr int kMessageLimit = 100'000;

struct Answer {
    const std::function<void(const nlmsghdr&)>& take;
    const std::uint32_t sequence;
    const SteadyClock::time_point deadline;
    int messages = 0;
    bool done = false;
    int status = 0; ///< of the dump as a whole, a negative libnl error

    bool isLate() const { return SteadyClock::now() > deadline; }
};

/// Replaces libnl's check of the sequence number, which would accept the rest of an abandoned
/// answer as the answer to the next request.
int admitMessage(nl_msg* message, void* argument)
{
    auto& answer = *static_cast<Answer*>(argument);
    if (++answer.messages > kMessageLimit)
        return -NLE_MSG_OVERFLOW;
    if (answer.isLate())
        return -NLE_AGAIN;
    return nlmsg_hdr(message)->nlmsg_seq == answer.sequence ? NL_OK : NL_SKIP;
}

int takeMessage(nl_msg* message, void* argument)
{
    static_cast<Answer*>(argument)->take(*nlmsg_hdr(message));
    return NL_OK;
}

/// The last message of a dump says whether the dump failed halfway.
int finish(nl_msg* message, void* argument)
{
    auto& answer = *static_cast<Answer*>(argument);
    int error = 0;
    if (nlmsg_datalen(nlmsg_hdr(message)) >= int(sizeof error))
        std::memcpy(&error, nlmsg_data(nlmsg_hdr(message)), sizeof error);
    if (error < 0)
        answer.status = -nl_syserr2nlerr(error);
    answer.done = true;
    return NL_STOP;
}

struct CallbackDeleter {
    void operator()(nl_cb* callbacks) const { nl_cb_put(callbacks); }
};

/// Receives until the answer is complete; 0 or a negative libnl error.
int receiveAnswer(nl_sock* socket, Answer& answer)
{
    const std::unique_ptr<nl_cb, CallbackDeleter> callbacks(
        nl_cb_clone(std::unique_ptr<nl_cb, CallbackDeleter>(nl_socket_get_cb(socket)).get()));
    if (!callbacks)
        return -NLE_NOMEM;
    nl_cb_set(callbacks.get(), NL_CB_SEQ_CHECK, NL_CB_CUSTOM, admitMessage, &answer);
    nl_cb_set(callbacks.get(), NL_CB_VALID, NL_CB_CUSTOM, takeMessage, &answer);
    nl_cb_set(callbacks.get(), NL_CB_FINISH, NL_CB_CUSTOM, finish, &answer);
    nl_cb_set(callbacks.get(), NL_CB_ACK, NL_CB_CUSTOM, finish, &answer);
    while (!answer.done) {
        if (answer.isLate())
            return -NLE_AGAIN;
        const int status = nl_recvmsgs(socket, callbacks.get());
        if (status < 0)
            return status;
    }
    return answer.status;
}

} // namespace

void NetlinkMessageDeleter::operator()(nl_msg* message) const
{
    nlmsg_free(message);
}

void NetlinkSocket::Deleter::operator()(nl_sock* socket) const
{
    nl_socket_free(socket);
}

base::Result<NetlinkSocket> NetlinkSocket::open(int protocol)
{
    NetlinkSocket opened(nl_socket_alloc());
    if (!opened.m_socket)
        return netlinkFailure(-NLE_NOMEM);
    if (const int status = nl_connect(opened.handle(), protocol); status < 0)
        return netlinkFailure(status);
    const timeval limit {.tv_sec = kReceiveTimeout.count() / 1000,
        .tv_usec = (kReceiveTimeout.count() % 1000) * 1000};
    if (::setsockopt(
            nl_socket_get_fd(opened.handle()), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit)
        != 0)
        return netlinkFailure(-NLE_FAILURE);
    return opened;
}

base::Result<std::monostate> NetlinkSocket::request(nl_msg& message,
    const std::function<void(const nlmsghdr&)>& take, const std::function<void()>& restart)
{
    const auto deadline = SteadyClock::now() + kAnswerLimit;
    int status = 0;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        if (attempt > 0) {
            restart();
            // Each try has its own number, so that its answer differs from the rest of the last
            // one.
            nlmsg_hdr(&message)->nlmsg_seq = NL_AUTO_SEQ;
        }
        status = nl_send_auto(handle(), &message);
        if (status >= 0) {
            Answer answer {
                .take = take, .sequence = nlmsg_hdr(&message)->nlmsg_seq, .deadline = deadline};
            status = receiveAnswer(handle(), answer);
        }
        if (status != -NLE_DUMP_INTR)
            break;
    }
    if (status < 0)
        return netlinkFailure(status);
    return std::monostate {};
}

std::optional<GenericMessage> genericMessage(const nlmsghdr& message, int family)
{
    auto* header = const_cast<nlmsghdr*>(&message); // libnl's readers take no const
    if (message.nlmsg_type != family || !genlmsg_valid_hdr(header, 0))
        return {};
    auto* generic = static_cast<genlmsghdr*>(nlmsg_data(header));
    return GenericMessage {generic->cmd,
        {reinterpret_cast<const std::byte*>(genlmsg_attrdata(generic, 0)),
            size_t(genlmsg_attrlen(generic, 0))}};
}

base::Failure netlinkFailure(int nlError)
{
    const QString text = QString::fromUtf8(nl_geterror(nlError));
    switch (-nlError) {
    case NLE_OBJ_NOTFOUND:
    case NLE_NODEV:
        return {base::FailureKind::NotFound, text};
    case NLE_OPNOTSUPP:
    case NLE_AF_NOSUPPORT:
    case NLE_PROTO_MISMATCH:
        return {base::FailureKind::NotAvailable, text};
    case NLE_PERM:
    case NLE_NOACCESS:
        return {base::FailureKind::NotAllowed, text};
    case NLE_AGAIN:
        return {base::FailureKind::TimedOut, text};
    case NLE_DUMP_INTR:
        return {base::FailureKind::Interrupted, text};
    default:
        return {base::FailureKind::Other, text};
    }
}

} // namespace netvane::netlink
