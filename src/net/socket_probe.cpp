#include "net/socket_probe.h"

#include "base/detached_work.h"

#include <QPointer>

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace netvane::net {
namespace {

/// A resolver that hangs holds a thread for half a minute or so; a name that two services probe
/// every three seconds would then hold about twenty.
constexpr int kMostLookUps = 32;

class ProbeHandle : public platform::Connection {
public:
    explicit ProbeHandle(SocketProbe* probe)
        : m_probe(probe)
    {
    }
    ~ProbeHandle() override { ProbeHandle::cancel(); }

    void start() override
    {
        if (m_probe)
            m_probe->start();
    }
    void cancel() override
    {
        if (m_probe)
            m_probe->cancel();
    }

private:
    const QPointer<SocketProbe> m_probe;
};

} // namespace

std::unique_ptr<platform::Connection> handleOf(SocketProbe* probe)
{
    return std::make_unique<ProbeHandle>(probe);
}

SocketProbe::SocketProbe(ProbeContext& context, Kind kind, QString host, quint16 port,
    platform::ConnectionHandler handler)
    : QObject(&context.probes)
    , m_context(context)
    , m_kind(kind)
    , m_host(std::move(host))
    , m_port(port)
    , m_handler(std::move(handler))
{
}

SocketProbe::~SocketProbe()
{
    stopWatching();
    m_socket = {};
    if (m_isStarted && m_handler)
        m_handler({.state = platform::ConnectionState::Cancelled, .at = clock().monotonicNow()});
}

void SocketProbe::start()
{
    if (m_isCancelled)
        return;
    m_isStarted = true;
    m_addresses = addressesOfLiteral(m_host.toStdString(), m_port);
    if (m_addresses.empty())
        lookUpHost();
    else
        askNext();
}

void SocketProbe::cancel()
{
    m_isCancelled = true;
    stopWatching();
    m_socket = {};
    deleteLater();
}

void SocketProbe::lookUpHost()
{
    auto& context = m_context;
    const auto work = [lookUp = lookUp(), host = m_host.toStdString(), port = m_port] {
        return lookUp(host, port);
    };
    const auto deliver = [&context, probe = QPointer(this)](const HostAddresses& found) {
        --context.lookUps;
        if (probe && !probe->m_isCancelled)
            probe->takeAddresses(found);
    };
    // The context is the owner, because the thread counts until it is done.
    if (context.lookUps < kMostLookUps
        && base::runDetached(
            &context.probes, work, deliver, context.clock, base::Delivery::Immediate))
        ++context.lookUps;
    else
        fail(QString::fromStdString(tryAgainText()));
}

void SocketProbe::takeAddresses(const HostAddresses& found)
{
    m_addresses = found.addresses;
    if (found.errorText.empty())
        askNext();
    else
        fail(QString::fromLocal8Bit(found.errorText));
}

void SocketProbe::askNext()
{
    while (m_next < m_addresses.size()) {
        const auto& address = m_addresses[m_next++];
        m_socket = base::FileDescriptor(::socket(
            address.storage.ss_family, m_kind.socketType | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        m_askedAt = clock().monotonicNow();
        m_isUnwatched = false;
        if (!m_socket.isOpen() || !ask(address)) {
            m_error = errno;
            continue;
        }
        m_isAsked = true;
        // A peer on this machine has answered by now, and the main thread may be busy from here on.
        if (look())
            return;
        m_isUnwatched = m_next == 1 && m_kind.firstLook == base::Delivery::Batched
            && m_unmeasured == m_unmeasured.zero();
        if (m_isUnwatched)
            m_context.clock.soon(this, [this] { lookOrWatch(); });
        else
            lookOrWatch();
        return;
    }
    fail(qt_error_string(m_error));
}

/// Whether there is an answer. A bad one leads to the next address.
bool SocketProbe::look()
{
    if (!m_socket.isOpen() || m_isAnswered)
        return true;
    const auto now = clock().monotonicNow(); // before anything else: this is what is measured
    const auto answer = takeAnswer();
    if (!answer)
        return false;
    stopWatching();
    if (answer->isUntimed && m_isUnwatched) {
        askOnceMore();
        return true;
    }
    if (answer->error == 0) {
        m_isAnswered = true;
        tell({.state = platform::ConnectionState::Ready,
            .at = std::clamp(answer->at.value_or(now), m_askedAt, now) - m_unmeasured,
            .answeredBy = answer->from.isEmpty() ? m_host : answer->from,
            .askedAt = m_askedAt - m_unmeasured,
            .retransmissions = answer->retransmissions});
        return true;
    }
    m_error = answer->error;
    m_socket = {};
    if (answer->endsProbe)
        m_next = m_addresses.size();
    askNext();
    return true;
}

void SocketProbe::askOnceMore()
{
    m_socket = {};
    m_unmeasured = clock().monotonicNow() - m_askedAt;
    --m_next;
    askNext();
}

void SocketProbe::lookOrWatch()
{
    if (look() || m_notifier)
        return;
    m_isUnwatched = false;
    m_notifier = new QSocketNotifier(descriptor(), m_kind.event, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SocketProbe::look);
}

/// Before the socket is closed. May be called by the notifier.
void SocketProbe::stopWatching()
{
    if (auto* notifier = std::exchange(m_notifier, nullptr)) {
        notifier->setEnabled(false);
        notifier->deleteLater();
    }
}

/// On the next turn, since handlers are never called inside a call of their connection.
void SocketProbe::tell(const platform::ConnectionEvent& event)
{
    const auto now = [this, event] {
        if (m_isCancelled)
            return;
        const auto handler = m_handler;
        if (event.state == platform::ConnectionState::Failed) {
            m_handler = nullptr;
            deleteLater();
        }
        handler(event);
    };
    QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
}

void SocketProbe::fail(const QString& error)
{
    tell({.state = platform::ConnectionState::Failed,
        .at = clock().monotonicNow(),
        .error = error,
        .askedAt = m_isAsked ? std::optional(m_askedAt) : std::nullopt});
}

} // namespace netvane::net
