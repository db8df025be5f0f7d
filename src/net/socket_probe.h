#pragma once

#include "base/clock.h"
#include "base/file_descriptor.h"
#include "net/host_addresses.h"
#include "platform/connection.h"

#include <QObject>
#include <QSocketNotifier>

#include <optional>

namespace netvane::net {

/// What the probes of one factory share. Goes with the factory, and the probes with it.
struct ProbeContext {
    base::Clock& clock;
    AddressLookup lookUp;
    int lookUps = 0; ///< threads that are in a call of the resolver
    QObject probes {}; ///< their parent; destroyed before the rest
};

/// A question to a host over a non-blocking socket. The addresses of the host are asked one after
/// the other until one answers. Main thread; the event loop watches the socket. Ends with
/// `deleteLater`, and tells the handler that it was cancelled if it was not told of a failure.
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
        bool endsProbe = false; ///< a bad answer after which no other address is asked
        /// When it came, if the kernel took the time.
        std::optional<std::chrono::steady_clock::time_point> at;
        QString from; ///< the address that answered, if that is not the host's
    };

    SocketProbe(ProbeContext& context, Kind kind, QString host, quint16 port,
        platform::ConnectionHandler handler);

    /// How a name is resolved.
    virtual AddressLookup lookUp() const { return m_context.lookUp; }
    /// Sends the question; false, and errno, when it cannot.
    virtual bool ask(const SocketAddress& address) = 0;
    /// Never waits; absent when there is no answer yet.
    virtual std::optional<Answer> takeAnswer() = 0;
    int descriptor() const { return m_socket.get(); }
    std::chrono::steady_clock::time_point askedAt() const { return m_askedAt; }
    const base::Clock& clock() const { return m_context.clock; }

private:
    void lookUpHost();
    void takeAddresses(const HostAddresses& found);
    void askNext();
    bool look();
    void lookOrWatch();
    void stopWatching();
    void tell(const platform::ConnectionEvent& event);
    void fail(const QString& error);

    ProbeContext& m_context;
    const Kind m_kind;
    const QString m_host;
    const quint16 m_port;
    platform::ConnectionHandler m_handler; ///< until it was told of a failure
    std::vector<SocketAddress> m_addresses;
    size_t m_next = 0;
    base::FileDescriptor m_socket;
    QSocketNotifier* m_notifier = nullptr;
    std::chrono::steady_clock::time_point m_askedAt;
    int m_error = 0; ///< of the last address that failed
    bool m_isStarted = false;
    bool m_isAsked = false;
    bool m_isAnswered = false;
    bool m_isCancelled = false;
};

/// What the owner of a probe holds.
std::unique_ptr<platform::Connection> handleOf(SocketProbe* probe);

} // namespace netvane::net
