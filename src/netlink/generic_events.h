#pragma once

#include "base/file_descriptor.h"
#include "netlink/netlink_socket.h"

namespace netvane::netlink {

/// A socket in multicast groups of a generic netlink family, which anybody may join unless the
/// family forbids it. It costs nothing while no message comes.
class GenericEvents {
public:
    /// The socket of `open`; in tests any datagram socket.
    GenericEvents(base::FileDescriptor socket, int family)
        : m_socket(std::move(socket))
        , m_family(family)
    {
    }

    /// Joins the groups. A filter in the kernel holds back all messages but those with one of the
    /// commands. May wait for the kernel, within a limit: for background threads. The numbers of a
    /// family change when its module is loaded again; then its events no longer come.
    static base::Result<GenericEvents> open(const char* family, std::span<const char* const> groups,
        std::span<const std::uint8_t> commands);

    /// Readable when there is something to receive.
    int descriptor() const { return m_socket.get(); }

    /// Passes each message that arrived since the last call to `take`; never waits. After a flood
    /// the socket stays readable, or the kernel has dropped some messages.
    void receive(const std::function<void(const GenericMessage&)>& take) const;

private:
    base::FileDescriptor m_socket;
    int m_family; ///< its number, assigned when it registers
};

} // namespace netvane::netlink
