// Whether the probes' memory stays where it is over 100,000 recorded results: connections, look-ups
// and pages that are answered at once, by a clock that is moved by hand.

#include "base/log.h"
#include "base/work_queues.h"
#include "figure.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "simulated/manual_clock.h"
#include "simulated/network.h"

#include <QCoreApplication>

#include <malloc.h>

#include <cstdio>

using namespace netvane;
using namespace std::chrono_literals;

namespace {

constexpr int kRoundsBefore = 2'000; // until every list is full and every pool has its size
constexpr int kRounds = 50'000; // of two probes each
constexpr std::ptrdiff_t kBoundBytes = 64 * 1024;

class InstantConnections : public platform::ConnectionFactory {
public:
    explicit InstantConnections(const base::Clock& clock)
        : m_clock(clock)
    {
    }

    std::unique_ptr<platform::Connection> connectTcp(
        const QString&, quint16, platform::ConnectionHandler handler) override
    {
        return std::make_unique<Instant>(m_clock, std::move(handler));
    }
    std::unique_ptr<platform::Connection> sendFullPacket(
        const QString& host, quint16 port, platform::ConnectionHandler handler) override
    {
        return connectTcp(host, port, std::move(handler));
    }

private:
    class Instant : public platform::Connection {
    public:
        Instant(const base::Clock& clock, platform::ConnectionHandler handler)
            : m_clock(clock)
            , m_handler(std::move(handler))
        {
        }
        void start() override
        {
            m_handler({platform::ConnectionState::Ready, m_clock.monotonicNow(), {}});
        }
        void cancel() override { }

    private:
        const base::Clock& m_clock;
        const platform::ConnectionHandler m_handler;
    };

    const base::Clock& m_clock;
};

class InstantResolver : public platform::Resolver {
public:
    platform::Resolution resolve(const std::string&) override { return {}; }
};

class InstantPage : public platform::HttpClient {
public:
    void send(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override
    {
        const platform::HttpAnswer answer {
            .status = 200, .body = QByteArrayLiteral("Success"), .finalUrl = request.url};
        QMetaObject::invokeMethod(
            owner, [deliver = std::move(deliver), answer] { deliver(answer); },
            Qt::QueuedConnection);
    }
};

class NoBrowser : public platform::UrlOpener {
public:
    bool openUrl(const QUrl&) override { return false; }
};

std::ptrdiff_t heapBytes()
{
    return std::ptrdiff_t(::mallinfo2().uordblks);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    base::setLogSink([](const QString&) {});
    simulated::ManualClock clock;
    InstantConnections connections(clock);
    InstantPage page;
    NoBrowser browser;
    base::WorkQueue queue;
    simulated::NetworkConfiguration network;
    const probes::NetworkUtils utils(network, queue);
    probes::PingService router(
        QStringLiteral("192.0.2.1"), QStringLiteral("router"), clock, connections);
    probes::PingService internet(
        QStringLiteral("192.0.2.2"), QStringLiteral("internet"), clock, connections);
    probes::DNSService dns(
        utils, std::make_shared<InstantResolver>(), clock, QStringLiteral("name.test"));
    probes::CaptivePortalService portal(
        page, &browser, clock, QUrl(QStringLiteral("https://probe.test/")));
    router.start();
    internet.start();
    dns.start();
    portal.start();

    std::ptrdiff_t before = 0;
    for (int round = 0; round < kRoundsBefore + kRounds; ++round) {
        if (round == kRoundsBefore)
            before = heapBytes();
        clock.advance(probes::PingService::pingInterval);
        QCoreApplication::processEvents();
    }
    const auto grown = heapBytes() - before;
    std::printf("memory grown over %d recorded results\n", 2 * kRounds);
    std::printf("  heap, bytes            %td   at most %td\n", grown, kBoundBytes);
    std::printf("  probes, look-ups       %d, %d\n", router.pingCount() + internet.pingCount(),
        dns.lookupCount());
    bench::record({.name = QStringLiteral("heap grown over thousands of recorded results"),
        .unit = QStringLiteral("bytes"),
        .values = {double(grown)},
        .bound = double(kBoundBytes)});
    return grown <= kBoundBytes ? 0 : 1;
}
