#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "net/host_addresses.h"
#include "platform/connection.h"

#include <QObject>
#include <QSocketNotifier>

#include <optional>

namespace netvane::net {

/// The state that the probes of one factory share. Destroyed with the factory; this destroys the
/// probes.
struct ProbeContext {
    base::Clock& clock;
    AddressLookup lookUp;
    int lookUps = 0; ///< threads that are blocked in the resolver
    QObject probes {}; ///< their parent; destroyed before the rest
};

/// One request to a host over a non-blocking socket. It tries the addresses of the host one after
/// the other until one answers. Main thread; the event loop watches the socket. Ends with
/// `deleteLater`; the handler gets `Cancelled` unless it got `Failed`.
class SocketProbe : public QObject {
public:
    ~SocketProbe() override;

    /// As `platform::Connection`. The first packet to an address literal is sent inside `start`.
    void start();
    void cancel();

protected:
    struct Kind {
        int socketType; ///< SOCK_STREAM or SOCK_DGRAM
        QSocketNotifier::Type event; ///< tells of an answer
        base::Delivery firstLook; ///< when to look for an answer that is not there at once
    };
    struct Answer {
        int error = 0; ///< errno of a bad answer; 0: a good one
        bool endsProbe = false; ///< a bad answer after which no other address is tried
        /// A good answer whose time nobody took. Where it was not watched for either, the host is
        /// asked once more.
        bool isUntimed = false;
        /// When it arrived, if the kernel stamped it.
        std::optional<std::chrono::steady_clock::time_point> at;
        QString from; ///< the address that answered, if that is not the host's
        std::optional<int> retransmissions {}; ///< packets that were sent again, if that is known
    };

    SocketProbe(ProbeContext& context, Kind kind, QString host, quint16 port,
        platform::ConnectionHandler handler);

    /// How a name is resolved.
    virtual AddressLookup lookUp() const { return m_context.lookUp; }
    /// Sends the request; false with errno if that fails.
    virtual bool ask(const SocketAddress& address) = 0;
    /// Never waits; absent without an answer yet.
    virtual std::optional<Answer> takeAnswer() = 0;
    int descriptor() const { return m_socket.get(); }
    std::chrono::steady_clock::time_point askedAt() const { return m_askedAt; }
    const base::Clock& clock() const { return m_context.clock; }

private:
    void lookUpHost();
    void takeAddresses(const HostAddresses& found);
    void askNext();
    bool look();
    void askOnceMore();
    void lookOrWatch();
    void stopWatching();
    void tell(const platform::ConnectionEvent& event);
    void fail(const QString& error);

    ProbeContext& m_context;
    const Kind m_kind;
    const QString m_host;
    const quint16 m_port;
    platform::ConnectionHandler m_handler; ///< empty after it got a failure
    std::vector<SocketAddress> m_addresses;
    size_t m_next = 0;
    base::FileDescriptor m_socket;
    QSocketNotifier* m_notifier = nullptr;
    std::chrono::steady_clock::time_point m_askedAt;
    /// What went by before the host was asked once more; no part of the measured time.
    std::chrono::steady_clock::duration m_unmeasured {};
    int m_error = 0; ///< of the last address that failed
    bool m_isStarted = false;
    bool m_isUnwatched = false; ///< an answer may lie there for a while before it is seen
    bool m_isAsked = false;
    bool m_isAnswered = false;
    bool m_isCancelled = false;
};

/// The handle that the owner of a probe has.
std::unique_ptr<platform::Connection> handleOf(SocketProbe* probe);

} // namespace netvane::net
