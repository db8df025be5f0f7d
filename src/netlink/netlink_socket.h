#pragma once

// This room exchanges netlink messages with the kernel: sockets with time limits, messages and
// attributes. It does not interpret the messages; `radio` and `net` do. Every length in a message
// is checked before it is used.

#include "base/result.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>

struct nl_msg;
struct nl_sock;
struct nlmsghdr;

namespace netvane::netlink {

/// The bytes after a netlink message's fixed header: its attributes.
using AttributeBytes = std::span<const std::byte>;

struct NetlinkMessageDeleter {
    void operator()(nl_msg* message) const;
};
using NetlinkMessage = std::unique_ptr<nl_msg, NetlinkMessageDeleter>;

/// A netlink socket (libnl). Each wait ends after `kReceiveTimeout`, because a driver can hold the
/// kernel's lock for any time. One thread at a time.
class NetlinkSocket {
public:
    static constexpr std::chrono::milliseconds kReceiveTimeout {1000};
    /// The limit of a whole request, further tries included.
    static constexpr std::chrono::milliseconds kAnswerLimit {3000};

    /// `protocol` is NETLINK_ROUTE or NETLINK_GENERIC.
    static base::Result<NetlinkSocket> open(int protocol);

    /// Sends a request and passes each message of the answer to `take`; the rest of an earlier
    /// answer is ignored. A dump that the kernel marks as interrupted is requested again, at most
    /// twice; `restart` is called before each further try.
    base::Result<std::monostate> request(nl_msg& message,
        const std::function<void(const nlmsghdr&)>& take, const std::function<void()>& restart);

    /// The underlying socket, for libnl's own lookups and for feeding it from memory.
    nl_sock* handle() const { return m_socket.get(); }

private:
    struct Deleter {
        void operator()(nl_sock* socket) const;
    };
    explicit NetlinkSocket(nl_sock* socket)
        : m_socket(socket)
    {
    }

    std::unique_ptr<nl_sock, Deleter> m_socket;
};

/// A generic netlink message: its command and its attributes.
struct GenericMessage {
    int command = 0;
    AttributeBytes attributes;
};
/// Absent if the message belongs to another family or is too short.
std::optional<GenericMessage> genericMessage(const nlmsghdr& message, int family);

/// Maps a libnl error code; the only place that does.
base::Failure netlinkFailure(int nlError);

} // namespace netvane::netlink
