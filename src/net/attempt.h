#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "net/host_addresses.h"

#include <optional>

namespace netvane::net {

/// A non-blocking socket on its way to the first of several addresses that answers. One thread at a
/// time, but not always the same.
class Attempt {
public:
    enum class Answer {
        Good,
        Bad, ///< see `error`
        None, ///< what came was meant for somebody else; the answer may still come
    };

    virtual ~Attempt() = default;

    void setAddresses(std::vector<SocketAddress> addresses) { m_addresses = std::move(addresses); }

    /// Asks the next address that can be asked; when there is none left `isUnderWay` is false.
    void askNext(const base::Clock& clock);
    bool isUnderWay() const { return m_socket.isOpen(); }
    /// When the answer was there as soon as the question was sent: the peer is on this machine.
    std::optional<std::chrono::steady_clock::time_point> answeredAt() const { return m_answeredAt; }
    /// The same as the kernel took it, where it does so. Holds after a good answer.
    virtual std::optional<std::chrono::steady_clock::time_point> kernelAnsweredAt() const
    {
        return {};
    }
    /// Once the kernel reports something: what it is. Never waits.
    virtual Answer takeAnswer() = 0;
    /// Who gave the good answer if it was not the peer: an address.
    virtual std::optional<std::string> router() const { return {}; }
    /// Ends the try under way.
    void fail(int error);
    /// errno of the last address that could not be had.
    int error() const { return m_error; }
    int descriptor() const { return m_socket.get(); }
    /// What the kernel is to report about the descriptor besides errors: POLLIN or POLLOUT.
    virtual short awaited() const = 0;

protected:
    /// SOCK_STREAM or SOCK_DGRAM.
    explicit Attempt(int socketType)
        : m_socketType(socketType)
    {
    }

    /// Has the new socket send its question; false, and errno, when it cannot.
    virtual bool ask(const SocketAddress& address) = 0;
    Answer badAnswer(int error);
    std::chrono::steady_clock::time_point askedAt() const { return m_askedAt; }

private:
    bool isAnswered() const;

    const int m_socketType;
    std::vector<SocketAddress> m_addresses;
    size_t m_next = 0;
    base::FileDescriptor m_socket;
    std::chrono::steady_clock::time_point m_askedAt;
    std::optional<std::chrono::steady_clock::time_point> m_answeredAt;
    int m_error = 0;
};

} // namespace netvane::net
