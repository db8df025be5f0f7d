// How much of a published latency is ours and not the network's: the probe's time minus the
// kernel's own round trip for that connection (tcp_info), while the main thread paints. Beside it,
// in the same run and measured the same way, a blocking connect(). `run_probe_fidelity` makes the
// peers.

#include "platform/linux/file_descriptor.h"
#include "platform/linux/socket_connections.h"
#include "platform/log.h"
#include "platform/system_clock.h"
#include "probes/ping_service.h"

#include <QCoreApplication>
#include <QTimer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

using namespace netvane;
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
    explicit ObservedConnections(const platform::Clock& clock)
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

    std::atomic<double> roundTripMs = 0; ///< of the last connection that was ready

private:
    platform::SocketConnections m_real;
};

class Figures {
public:
    void add(double ms) { m_all.push_back(ms); }
    size_t count() const { return m_all.size(); }

    /// Prints a row; whether it is within the bounds.
    bool print(const QString& peer, const char* way)
    {
        std::ranges::sort(m_all);
        const double median = m_all[m_all.size() / 2];
        const double tail = m_all[m_all.size() * 95 / 100];
        std::printf("  %-16s %-18s %8.3f %8.3f   at most %.2f and %.2f\n", qPrintable(peer), way,
            median, tail, kMedianBoundMs, kTailBoundMs);
        return median <= kMedianBoundMs && tail <= kTailBoundMs;
    }

private:
    std::vector<double> m_all;
};

double blockingConnect(const sockaddr_in& peer)
{
    const auto start = std::chrono::steady_clock::now();
    const platform::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0)
        qFatal("the peer does not answer");
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count() - kernelRoundTripMs(socket.get());
}

enum Verdict {
    kHeld = 0,
    kMissed = 1,
    kTooBusy = 3, ///< a blocking connect missed the bounds, too: this machine cannot tell now
};

/// Measures one peer, one probe of each way in turn.
Verdict measure(const QString& name, const QString& host)
{
    platform::SystemClock clock;
    ObservedConnections connections(clock);
    probes::PingService service(host, name, clock, connections);
    Figures ours;
    Figures blocking;
    QTimer steps;
    steps.setTimerType(Qt::PreciseTimer);
    QObject::connect(&steps, &QTimer::timeout, &steps, [&] {
        if (service.isRunning() && service.metrics().size() < 2)
            return;
        if (service.isRunning()) {
            if (!service.metrics().back().ping)
                qFatal("the peer does not answer");
            ours.add(*service.metrics().back().ping - connections.roundTripMs);
            service.stop();
            blocking.add(blockingConnect(addressOf(host)));
        } else if (ours.count() == kProbes) {
            QCoreApplication::quit();
        } else {
            service.start(); // probes at once
        }
    });
    steps.start(kStep);
    QCoreApplication::exec();
    const bool held = ours.print(name, "our probe");
    const bool couldHold = blocking.print(name, "blocking connect");
    if (held)
        return kHeld;
    return couldHold ? kMissed : kTooBusy;
}

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
    platform::setLogSink([](const QString&) {});
    QTimer painting;
    painting.setTimerType(Qt::PreciseTimer);
    QObject::connect(&painting, &QTimer::timeout, paint);
    painting.start(kFrame);
    std::printf("%zu probes each while the main thread paints; ms beyond the kernel's round trip\n"
                "  %-16s %-18s %8s %8s\n",
        kProbes, "the peer answers", "", "median", "95th");
    Verdict verdict = kHeld;
    for (qsizetype i = 1; i + 1 < arguments.size(); i += 2) {
        const Verdict next = measure(arguments[i], arguments[i + 1]);
        if (verdict != kMissed && next != kHeld)
            verdict = next;
    }
    return verdict;
}
