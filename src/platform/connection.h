#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace netvane::platform {

enum class ConnectionState {
    Ready, ///< the peer answered
    Failed, ///< none of the host's addresses can be had; final
    Cancelled, ///< by `cancel`, or because the connection or its factory went; final
};

struct ConnectionEvent {
    ConnectionState state = ConnectionState::Cancelled;
    /// When it came about, by the monotonic clock: for `Ready` the moment the peer's answer came,
    /// however long the handler had to wait for its turn.
    std::chrono::steady_clock::time_point at;
    QString error; ///< only when failed: the system's own words in the user's language
    /// Only when ready: the host as it was given, or the address of the router that answered for
    /// it (see `HopPath`).
    QString answeredBy;
    /// When the question was sent to the address that this is about, after its name was resolved;
    /// absent when nothing could be sent.
    std::optional<std::chrono::steady_clock::time_point> askedAt {};
};

/// Is told of each state once, on the main thread and never inside a call of the connection's own.
/// Must not wait for anything, nor end the factory. It may still be called when the connection
/// object is gone, so it owns, or holds weakly, what it touches.
using ConnectionHandler = std::function<void(const ConnectionEvent&)>;

/// A connection that is set up and torn down, with nothing sent over it. Destroying it cancels it.
/// Main thread.
class Connection {
public:
    virtual ~Connection() = default;

    /// Once, while the factory is there; one that was cancelled before stays silent.
    virtual void start() = 0;
    /// Closes the connection whatever its state. May be called by the handler; a second call
    /// does nothing.
    virtual void cancel() = 0;
};

/// Makes connections. Destroying it cancels those that are left, and tells them so; a resolver that
/// hangs is not waited for.
class ConnectionFactory {
public:
    virtual ~ConnectionFactory() = default;

    /// `host` is an address literal (IPv4, or IPv6 with its scope where it needs one) or a name,
    /// whose addresses are tried in the resolver's order. Nothing happens before `start`.
    [[nodiscard]] virtual std::unique_ptr<Connection> connectTcp(
        const QString& host, quint16 port, ConnectionHandler handler)
        = 0;
};

} // namespace netvane::platform
