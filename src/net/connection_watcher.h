#pragma once

#include "base/file_descriptor.h"
#include "net/attempt.h"
#include "net/mailbox.h"
#include "platform/connection.h"

#include <map>

namespace netvane::net {

/// A connection from its start to its end.
struct OpenConnection {
    std::string host;
    std::uint16_t port = 0;
    platform::ConnectionHandler handler;
    std::unique_ptr<Attempt> attempt;
};

/// Waits for the kernel, and tells of what came. All on the watching thread, save the making;
/// others reach it through the mailbox.
class ConnectionWatcher {
public:
    ConnectionWatcher(
        const base::Clock& clock, AddressLookup lookUp, std::shared_ptr<Mailbox> mailbox);

    /// For a thread of its own. Returns after `stop`, every connection closed and told so.
    void run();
    void stop() { m_isStopped = true; }
    /// Readable while there is something to do.
    int descriptor() const { return m_epoll.get(); }
    /// For an event loop: does what there is to do, and never waits.
    void step() { step(std::chrono::milliseconds(0)); }
    /// Every connection is closed and told so.
    void endAll();

    /// `id` is not used twice. The attempt is under way, or failed, or has no address yet.
    void adopt(quint64 id, OpenConnection connection);
    void cancel(quint64 id);

private:
    using Connections = std::map<quint64, OpenConnection>;

    void step(std::chrono::milliseconds limit);
    void startLookUp(Connections::iterator place);
    void takeAddresses(quint64 id, HostAddresses found);
    void proceed(Connections::iterator place,
        std::optional<std::chrono::steady_clock::time_point> answeredAt);
    bool watch(const Connections::value_type& entry);
    void tellReady(const OpenConnection& connection, std::chrono::steady_clock::time_point at);
    void end(
        Connections::iterator place, platform::ConnectionState state, const QString& error = {});

    const base::Clock& m_clock;
    const AddressLookup m_lookUp;
    const std::shared_ptr<Mailbox> m_mailbox;
    base::FileDescriptor m_epoll;
    Connections m_connections;
    int m_lookUps = 0; ///< threads that are with the resolver
    bool m_isStopped = false;
};

} // namespace netvane::net
