// How much of a published latency is ours and not the network's: the probe's time minus the
// kernel's own round trip for that connection (tcp_info), while the main thread paints. Beside it,
// in the same run and measured the same way, a blocking connect() on a thread of its own.
// `run_probe_fidelity` makes the peers.

#include "base/file_descriptor.h"
#include "base/log.h"
#include "base/system_clock.h"
#include "figure.h"
#include "net/socket_connections.h"
#include "probes/ping_service.h"

#include <QCoreApplication>
#include <QTimer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <future>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr size_t kProbes = 200;
constexpr auto kFrame = 16ms;
constexpr auto kPainting = 10ms;
constexpr auto kStep = 13ms; // drifts through the frames
constexpr double kMedianBoundMs = 0.15;
constexpr double kTailBoundMs = 0.5;
constexpr quint16 kPort = 80;

sockaddr_in addressOf(const QString& host)
{
    sockaddr_in address {.sin_family = AF_INET, .sin_port = htons(kPort), .sin_addr = {}};
    ::inet_pton(AF_INET, host.toUtf8().constData(), &address.sin_addr);
    return address;
}

double kernelRoundTripMs(int descriptor)
{
    tcp_info info {};
    socklen_t length = sizeof info;
    ::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &length);
    return info.tcpi_rtt / 1e3;
}

/// The one socket of this process that is connected to `peer`.
int descriptorConnectedTo(const sockaddr_in& peer)
{
    rlimit limit {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    for (int descriptor = 0; descriptor < int(std::min<rlim_t>(limit.rlim_cur, 1024));
         ++descriptor) {
        sockaddr_in other {};
        socklen_t length = sizeof other;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&other), &length) == 0
            && other.sin_family == AF_INET && other.sin_addr.s_addr == peer.sin_addr.s_addr)
            return descriptor;
    }
    return -1;
}

/// The real connections, whose sockets are looked at once they are ready and before they close.
class ObservedConnections : public platform::ConnectionFactory {
public:
    explicit ObservedConnections(base::Clock& clock)
        : m_real(clock)
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return m_real.connectTcp(host, port,
            [this, peer = addressOf(host), handler = std::move(handler)](
                const platform::ConnectionEvent& event) {
                if (event.state == platform::ConnectionState::Ready)
                    roundTripMs = kernelRoundTripMs(descriptorConnectedTo(peer));
                handler(event);
            });
    }
    std::unique_ptr<platform::Connection> sendFullPacket(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return m_real.sendFullPacket(host, port, std::move(handler));
    }

    std::atomic<double> roundTripMs = 0; ///< of the last connection that was ready

private:
    net::SocketConnections m_real;
};

class Figures {
public:
    void add(double ms) { m_all.push_back(ms); }
    size_t count() const { return m_all.size(); }
    const std::vector<double>& all() const { return m_all; }

    /// Prints a row; false when it is bound and misses the bounds.
    bool print(const QString& peer, const char* way, bool isBound)
    {
        std::ranges::sort(m_all);
        const double median = m_all[m_all.size() / 2];
        const double tail = m_all[m_all.size() * 95 / 100];
        std::printf("  %-16s %-18s %8.3f %8.3f", qPrintable(peer), way, median, tail);
        std::printf(isBound ? "   at most %.2f and %.2f\n" : "\n", kMedianBoundMs, kTailBoundMs);
        return !isBound || (median <= kMedianBoundMs && tail <= kTailBoundMs);
    }

private:
    std::vector<double> m_all;
};

double blockingConnect(const sockaddr_in& peer)
{
    const auto start = std::chrono::steady_clock::now();
    const base::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0)
        qFatal("the peer does not answer");
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count() - kernelRoundTripMs(socket.get());
}

/// Measures one peer, one probe of each way in turn.
class Run {
public:
    Run(QString name, QString host)
        : m_name(std::move(name))
        , m_host(std::move(host))
    {
        m_steps.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_steps, &QTimer::timeout, &m_steps, [this] { step(); });
    }

    /// False when a bound is missed.
    bool exec()
    {
        m_steps.start(kStep);
        QCoreApplication::exec();
        const bool held = m_ours.print(m_name, "our probe", true);
        m_blocking.print(m_name, "blocking connect", false);
        bench::record({.name = u"latency beyond the kernel's own, a peer that answers "_s + m_name,
            .unit = u"ms"_s,
            .values = m_ours.all(),
            .bound = kMedianBoundMs,
            .rival = u"a blocking connect"_s,
            .rivalValues = m_blocking.all()});
        return held;
    }

private:
    void step()
    {
        if (m_service.isRunning()) {
            takeProbe();
        } else if (m_connect.valid()) {
            if (m_connect.wait_for(0s) == std::future_status::ready)
                m_blocking.add(m_connect.get());
        } else if (m_ours.count() == kProbes) {
            QCoreApplication::quit();
        } else {
            m_service.start(); // probes at once
        }
    }

    void takeProbe()
    {
        if (m_service.metrics().size() < 2)
            return;
        if (!m_service.metrics().back().ping)
            qFatal("the peer does not answer");
        m_ours.add(*m_service.metrics().back().ping - m_connections.roundTripMs);
        m_service.stop();
        // On a thread of its own, so that the main thread goes on painting.
        m_connect = std::async(std::launch::async, blockingConnect, addressOf(m_host));
    }

    const QString m_name;
    const QString m_host;
    base::SystemClock m_clock;
    ObservedConnections m_connections {m_clock};
    probes::PingService m_service {m_host, m_name, m_clock, m_connections};
    Figures m_ours;
    Figures m_blocking;
    std::future<double> m_connect;
    QTimer m_steps;
};

void paint()
{
    const auto end = std::chrono::steady_clock::now() + kPainting;
    while (std::chrono::steady_clock::now() < end) { }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: probe_fidelity NAME ADDRESS [NAME ADDRESS]... "
                   "(run_probe_fidelity calls it)\n",
            stderr);
        return 2;
    }
    base::setLogSink([](const QString&) {});
    QTimer painting;
    painting.setTimerType(Qt::PreciseTimer);
    QObject::connect(&painting, &QTimer::timeout, paint);
    painting.start(kFrame);
    std::printf("%zu probes each while the main thread paints; ms beyond the kernel's round trip\n"
                "  %-16s %-18s %8s %8s\n",
        kProbes, "the peer answers", "", "median", "95th");
    bool held = true;
    for (qsizetype i = 1; i + 1 < arguments.size(); i += 2)
        held = Run(arguments[i], arguments[i + 1]).exec() && held;
    return held ? 0 : 1;
}
