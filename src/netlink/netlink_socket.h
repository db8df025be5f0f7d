#pragma once

#include "base/result.h"

#include <chrono>
#include <functional>
#include <memory>
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

/// A netlink socket (libnl) whose every wait ends after `kReceiveTimeout`: a driver may hold the
/// kernel's lock for as long as it likes. One thread at a time.
class NetlinkSocket {
public:
    static constexpr std::chrono::milliseconds kReceiveTimeout {1000};
    /// After this a request that is still being answered, further tries included, waits no more.
    static constexpr std::chrono::milliseconds kAnswerLimit {3000};

    /// `protocol` is NETLINK_ROUTE or NETLINK_GENERIC.
    static base::Result<NetlinkSocket> open(int protocol);

    /// Sends a request, given that it asks for a dump, and hands each message of the answer to
    /// `take`; what is left of an earlier answer is passed over. A dump that the kernel marks as
    /// interrupted is asked again, twice at most; `restart` is called before each further try.
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

/// What a libnl error code means to us; the one place where they are told apart.
base::Failure netlinkFailure(int nlError);

} // namespace netvane::netlink
