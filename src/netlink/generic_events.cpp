#include "netlink/generic_events.h"

#include <linux/filter.h>
#include <linux/genetlink.h>
#include <netlink/errno.h>
#include <netlink/genl/ctrl.h>
#include <netlink/msg.h>
#include <netlink/netlink.h>
#include <netlink/socket.h>
#include <sys/socket.h>

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <vector>

namespace netvane::netlink {
namespace {

// The largest messages are those of scans, which list the channels (about 100 times 8 bytes), and
// of connections, which quote frames. Each is alone in its datagram.
constexpr size_t kDatagramSize = size_t(16) * 1024;
constexpr int kDatagramsAtOnce = 64;

/// Lets through messages with these commands (linux/filter.h); fails with libnl's number.
int filterCommands(int socket, std::span<const std::uint8_t> commands)
{
    std::vector<sock_filter> instructions {
        BPF_STMT(BPF_LD | BPF_B | BPF_ABS, NLMSG_HDRLEN + offsetof(genlmsghdr, cmd))};
    for (size_t i = 0; i < commands.size(); ++i) // the first number: how many to skip if it is so
        instructions.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, commands[i], std::uint8_t(commands.size() - i), 0));
    instructions.push_back(BPF_STMT(BPF_RET | BPF_K, 0));
    instructions.push_back(BPF_STMT(BPF_RET | BPF_K, 0xffffffff)); // all of the message
    const sock_fprog program {
        .len = static_cast<unsigned short>(instructions.size()), .filter = instructions.data()};
    return ::setsockopt(socket, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program) == 0
        ? 0
        : -NLE_FAILURE;
}

/// The number of the family, or a negative libnl error.
int joinGroups(nl_sock* socket, const char* family, std::span<const char* const> groups)
{
    for (const char* group : groups) {
        const int number = genl_ctrl_resolve_grp(socket, family, group);
        const int status = number < 0 ? number : nl_socket_add_membership(socket, number);
        if (status < 0)
            return status;
    }
    return genl_ctrl_resolve(socket, family);
}

} // namespace

base::Result<GenericEvents> GenericEvents::open(
    const char* family, std::span<const char* const> groups, std::span<const std::uint8_t> commands)
{
    const auto socket = NetlinkSocket::open(NETLINK_GENERIC);
    if (!socket)
        return socket.failure();
    const int number = joinGroups(socket.value().handle(), family, groups);
    if (number < 0)
        return netlinkFailure(number);
    const int descriptor = nl_socket_get_fd(socket.value().handle());
    if (const int status = filterCommands(descriptor, commands); status < 0)
        return netlinkFailure(status);
    base::FileDescriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    if (!copy.isOpen())
        return netlinkFailure(-NLE_FAILURE);
    return GenericEvents(std::move(copy), number);
}

void GenericEvents::receive(const std::function<void(const GenericMessage&)>& take) const
{
    std::array<std::byte, kDatagramSize> buffer {};
    for (int i = 0; i < kDatagramsAtOnce; ++i) {
        const ssize_t size = ::recv(descriptor(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size < 0 && errno == ENOBUFS)
            continue; // some were dropped; those that follow are there
        if (size <= 0)
            break;
        const auto* message = reinterpret_cast<const nlmsghdr*>(buffer.data());
        for (int left = int(size); nlmsg_ok(message, left);
             message = nlmsg_next(const_cast<nlmsghdr*>(message), &left)) {
            if (const auto generic = genericMessage(*message, m_family))
                take(*generic);
        }
    }
}

} // namespace netvane::netlink
