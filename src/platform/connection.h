#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace netvane::platform {

enum class ConnectionState {
    Ready, ///< the peer answered, if only to refuse
    Failed, ///< no address of the host could be reached; final
    Cancelled, ///< by `cancel`, or because the connection or its factory was destroyed; final
};

struct ConnectionEvent {
    ConnectionState state = ConnectionState::Cancelled;
    /// The time of the event by the monotonic clock: for `Ready` the arrival of the peer's answer,
    /// even if the handler runs later.
    std::chrono::steady_clock::time_point at;
    QString error; ///< only when failed: the system's own words in the user's language
    /// Only when ready: the host as it was given, or the address of the router that answered for
    /// it (see `HopPath`).
    QString answeredBy;
    /// When the question was sent to the address that this is about, after its name was resolved;
    /// absent when nothing could be sent.
    std::optional<std::chrono::steady_clock::time_point> askedAt {};
    /// Only when ready: packets of the handshake that this machine had to send again. Absent where
    /// it is not known: after a refusal.
    std::optional<int> retransmissions {};
};

/// Called once for each state, on the main thread and never inside a call of the connection. Must
/// not block or destroy the factory. It may be called after the connection object was destroyed, so
/// it must own what it uses, or use weak pointers.
using ConnectionHandler = std::function<void(const ConnectionEvent&)>;

/// A connection that is set up and closed without sending data. Destroying it cancels it. Main
/// thread.
class Connection {
public:
    virtual ~Connection() = default;

    /// Call once, while the factory exists; a cancelled connection sends no event.
    virtual void start() = 0;
    /// Closes the connection whatever its state. May be called by the handler; a second call
    /// does nothing.
    virtual void cancel() = 0;
};

/// Makes connections. Destroying it cancels the remaining ones, with an event for each; it does not
/// wait for a blocked resolver.
class ConnectionFactory {
public:
    virtual ~ConnectionFactory() = default;

    /// `host` is an address literal (IPv4, or IPv6 with its scope where it needs one) or a name,
    /// whose addresses are tried in the resolver's order. Nothing happens before `start`.
    [[nodiscard]] virtual std::unique_ptr<Connection> connectTcp(
        const QString& host, quint16 port, ConnectionHandler handler)
        = 0;
    /// Connects to an address literal and sends one packet of the full size that the path claims to
    /// take. `Ready`: it was acknowledged. `Failed`: the connection came about, but the packet was
    /// not acknowledged within five seconds, though sent again. `Cancelled`, after eight seconds at
    /// most: nothing is known.
    [[nodiscard]] virtual std::unique_ptr<Connection> sendFullPacket(
        const QString& host, quint16 port, ConnectionHandler handler)
        = 0;
};

} // namespace netvane::platform
