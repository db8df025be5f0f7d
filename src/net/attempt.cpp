#include "net/attempt.h"

#include <sys/socket.h>

#include <poll.h>

#include <cerrno>

namespace netvane::net {

void Attempt::askNext(const base::Clock& clock)
{
    m_socket = {};
    m_answeredAt.reset();
    while (m_next < m_addresses.size()) {
        const auto& address = m_addresses[m_next++];
        m_socket = base::FileDescriptor(
            ::socket(address.storage.ss_family, m_socketType | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        m_askedAt = clock.monotonicNow();
        if (!isUnderWay() || !ask(address)) {
            fail(errno);
            continue;
        }
        // Looked at here because whoever watches the socket from now on may first have to wait for
        // a processor.
        if (isAnswered())
            m_answeredAt = clock.monotonicNow();
        return;
    }
}

bool Attempt::isAnswered() const
{
    pollfd watched {.fd = descriptor(), .events = awaited()};
    return ::poll(&watched, 1, 0) > 0;
}

Attempt::Answer Attempt::badAnswer(int error)
{
    m_error = error;
    return Answer::Bad;
}

void Attempt::fail(int error)
{
    m_socket = {};
    m_error = error;
}

} // namespace netvane::net
