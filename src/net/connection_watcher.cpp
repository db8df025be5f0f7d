#include "net/connection_watcher.h"

#include "base/detached_thread.h"

#include <sys/epoll.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace netvane::net {
namespace {

constexpr quint64 kMailboxId = 0;
constexpr int kEventsAtOnce = 16;

/// A resolver that hangs holds a thread for half a minute or so; a name probed every three seconds
/// for two services would then hold about twenty.
constexpr int kMostLookUps = 32;

constexpr std::chrono::milliseconds kForEver {-1}; ///< to epoll_wait(2)

bool addToEpoll(const base::FileDescriptor& epoll, int descriptor, std::uint32_t events, quint64 id)
{
    epoll_event event {.events = events, .data = {.u64 = id}};
    return ::epoll_ctl(epoll.get(), EPOLL_CTL_ADD, descriptor, &event) == 0
        // One that has reported already and is to do so again.
        || (errno == EEXIST && ::epoll_ctl(epoll.get(), EPOLL_CTL_MOD, descriptor, &event) == 0);
}

} // namespace

ConnectionWatcher::ConnectionWatcher(
    const base::Clock& clock, AddressLookup lookUp, std::shared_ptr<Mailbox> mailbox)
    : m_clock(clock)
    , m_lookUp(std::move(lookUp))
    , m_mailbox(std::move(mailbox))
    , m_epoll(::epoll_create1(EPOLL_CLOEXEC))
{
    if (!addToEpoll(m_epoll, m_mailbox->descriptor(), EPOLLIN, kMailboxId))
        qFatal("Connections cannot be waited for");
}

void ConnectionWatcher::run()
{
    while (!m_isStopped)
        step(kForEver);
    endAll();
}

void ConnectionWatcher::step(std::chrono::milliseconds limit)
{
    std::array<epoll_event, kEventsAtOnce> events {};
    const int count = ::epoll_wait(m_epoll.get(), events.data(), kEventsAtOnce, int(limit.count()));
    const auto now = m_clock.monotonicNow(); // before anything else: this is what is measured
    for (int i = 0; i < count; ++i) {
        const auto place = m_connections.find(events[size_t(i)].data.u64);
        if (place != m_connections.end())
            proceed(place, now);
    }
    for (const auto& task : m_mailbox->take())
        task(*this);
}

void ConnectionWatcher::endAll()
{
    while (!m_connections.empty())
        end(m_connections.begin(), platform::ConnectionState::Cancelled);
}

void ConnectionWatcher::adopt(quint64 id, OpenConnection connection)
{
    const auto place = m_connections.emplace(id, std::move(connection)).first;
    const auto& attempt = *place->second.attempt;
    if (attempt.isUnderWay() || attempt.error() != 0)
        proceed(place, attempt.answeredAt());
    else
        startLookUp(place);
}

void ConnectionWatcher::cancel(quint64 id)
{
    if (const auto place = m_connections.find(id); place != m_connections.end())
        end(place, platform::ConnectionState::Cancelled);
}

void ConnectionWatcher::startLookUp(Connections::iterator place)
{
    const auto& [id, connection] = *place;
    // The thread outlives the factory if it has to: it holds all it needs, and a mailbox that
    // nobody reads any more takes letters, too.
    const auto work = [mailbox = m_mailbox, lookUp = m_lookUp, host = connection.host,
                          port = connection.port, id = id] {
        mailbox->post([id, found = lookUp(host, port)](
                          ConnectionWatcher& watcher) { watcher.takeAddresses(id, found); });
    };
    if (m_lookUps < kMostLookUps && base::startDetachedThread(work))
        ++m_lookUps;
    else
        end(place, platform::ConnectionState::Failed, QString::fromStdString(tryAgainText()));
}

void ConnectionWatcher::takeAddresses(quint64 id, HostAddresses found)
{
    --m_lookUps;
    const auto place = m_connections.find(id);
    if (place == m_connections.end())
        return;
    if (!found.errorText.empty()) {
        end(place, platform::ConnectionState::Failed, QString::fromLocal8Bit(found.errorText));
        return;
    }
    auto& attempt = *place->second.attempt;
    attempt.setAddresses(std::move(found.addresses));
    attempt.askNext(m_clock);
    proceed(place, attempt.answeredAt());
}

/// Takes an attempt from what is known of it now to where only the kernel can go on.
void ConnectionWatcher::proceed(
    Connections::iterator place, std::optional<std::chrono::steady_clock::time_point> answeredAt)
{
    auto& connection = place->second;
    auto& attempt = *connection.attempt;
    while (attempt.isUnderWay()) {
        if (!answeredAt) {
            if (watch(*place))
                return;
            attempt.fail(errno);
        } else if (const auto answer = attempt.takeAnswer(); answer == Attempt::Answer::Good) {
            tellReady(connection, *answeredAt);
            return;
        } else if (answer == Attempt::Answer::None) {
            answeredAt.reset();
            continue;
        }
        attempt.askNext(m_clock);
        answeredAt = attempt.answeredAt();
    }
    end(place, platform::ConnectionState::Failed, qt_error_string(attempt.error()));
}

/// One report is enough: what happens to a connection that is ready is of no interest.
bool ConnectionWatcher::watch(const Connections::value_type& entry)
{
    const auto& attempt = *entry.second.attempt;
    // The events of poll(2) are those of epoll(7).
    return addToEpoll(m_epoll, attempt.descriptor(),
        std::uint32_t(attempt.awaited()) | EPOLLONESHOT, entry.first);
}

/// Where the kernel itself took the time, that holds: we may have been busy when it came.
void ConnectionWatcher::tellReady(
    const OpenConnection& connection, std::chrono::steady_clock::time_point at)
{
    const auto& attempt = *connection.attempt;
    connection.handler({.state = platform::ConnectionState::Ready,
        .at = std::min(at, attempt.kernelAnsweredAt().value_or(at)),
        .error = {},
        .answeredBy = QString::fromStdString(attempt.router().value_or(connection.host))});
}

void ConnectionWatcher::end(
    Connections::iterator place, platform::ConnectionState state, const QString& error)
{
    auto connection = std::move(m_connections.extract(place).mapped());
    connection.attempt.reset();
    connection.handler({.state = state, .at = m_clock.monotonicNow(), .error = error});
}

} // namespace netvane::net
