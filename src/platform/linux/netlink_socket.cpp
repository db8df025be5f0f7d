#include "platform/linux/netlink_socket.h"

#include <netlink/errno.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace netvane::platform {
namespace {

constexpr int kTries = 3;

struct Answer {
    const std::function<void(const nlmsghdr&)>& take;
    bool done = false;
};

int takeMessage(nl_msg* message, void* argument)
{
    static_cast<Answer*>(argument)->take(*nlmsg_hdr(message));
    return NL_OK;
}

int finish(nl_msg*, void* argument)
{
    static_cast<Answer*>(argument)->done = true;
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
    nl_cb_set(callbacks.get(), NL_CB_VALID, NL_CB_CUSTOM, takeMessage, &answer);
    nl_cb_set(callbacks.get(), NL_CB_FINISH, NL_CB_CUSTOM, finish, &answer);
    nl_cb_set(callbacks.get(), NL_CB_ACK, NL_CB_CUSTOM, finish, &answer);
    while (!answer.done) {
        const int status = nl_recvmsgs(socket, callbacks.get());
        if (status < 0)
            return status;
    }
    return 0;
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

Result<NetlinkSocket> NetlinkSocket::open(int protocol)
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

Result<std::monostate> NetlinkSocket::request(nl_msg& message,
    const std::function<void(const nlmsghdr&)>& take, const std::function<void()>& restart)
{
    int status = 0;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        if (attempt > 0) {
            restart();
            // A number of its own for each try, so that the rest of the last answer is not taken
            // for this one.
            nlmsg_hdr(&message)->nlmsg_seq = NL_AUTO_SEQ;
        }
        Answer answer {.take = take};
        status = nl_send_auto(handle(), &message);
        if (status >= 0)
            status = receiveAnswer(handle(), answer);
        if (status != -NLE_DUMP_INTR)
            break;
    }
    if (status < 0)
        return netlinkFailure(status);
    return std::monostate {};
}

Failure netlinkFailure(int nlError)
{
    const QString text = QString::fromUtf8(nl_geterror(nlError));
    switch (-nlError) {
    case NLE_OBJ_NOTFOUND:
    case NLE_NODEV:
        return {FailureKind::NotFound, text};
    case NLE_OPNOTSUPP:
    case NLE_AF_NOSUPPORT:
    case NLE_PROTO_MISMATCH:
        return {FailureKind::NotAvailable, text};
    case NLE_PERM:
    case NLE_NOACCESS:
        return {FailureKind::NotAllowed, text};
    case NLE_AGAIN:
        return {FailureKind::TimedOut, text};
    case NLE_DUMP_INTR:
        return {FailureKind::Interrupted, text};
    default:
        return {FailureKind::Other, text};
    }
}

} // namespace netvane::platform
