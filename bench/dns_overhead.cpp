// What the DNS timing adds to the time that it publishes: the published duration less that which
// the resolver itself measures, and the main thread's share of a tick. The resolver only waits, so
// that nothing is asked of the network.

#include "base/log.h"
#include "base/system_clock.h"
#include "base/work_queues.h"
#include "figure.h"
#include "net/configuration/linux_network_configuration.h"
#include "probes/dns_service.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

namespace {

constexpr int kLookups = 300;
constexpr auto kWait = 3ms;
constexpr double kAddedBoundMs = 0.05;
constexpr double kMainShareBoundMs = 1.0;

class WaitingResolver : public platform::Resolver {
public:
    platform::Resolution resolve(const std::string&) override
    {
        const auto begin = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(kWait);
        own = Milliseconds(std::chrono::steady_clock::now() - begin).count();
        return {};
    }

    std::atomic<double> own = 0;
};

/// The median, the 95th percentile, which is held against the bound, and the worst of `values`.
bool report(const char* what, std::vector<double> values, double bound)
{
    std::ranges::sort(values);
    const double nearlyAll = values[values.size() * 95 / 100];
    const bool isHeld = nearlyAll <= bound;
    std::printf("%-34s %9.4f %9.4f %9.4f %9.4f  %s\n", what, values[values.size() / 2], nearlyAll,
        values.back(), bound, isHeld ? "held" : "MISSED");
    bench::record({.name = u"name look-up, "_s + QLatin1StringView(what),
        .unit = u"ms"_s,
        .values = values,
        .bound = bound});
    return isHeld;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    base::setLogSink([](const QString&) {});
    base::SystemClock clock;
    net::LinuxNetworkConfiguration configuration;
    base::WorkQueue pool;
    const probes::NetworkUtils network(configuration, pool);
    const auto resolver = std::make_shared<WaitingResolver>();
    probes::DNSService service(network, resolver, clock, QStringLiteral("host.test"));

    std::vector<double> added;
    std::vector<double> mainShare;
    for (int lookup = 0; lookup < kLookups; ++lookup) {
        const auto begin = std::chrono::steady_clock::now();
        service.performLookup();
        mainShare.push_back(Milliseconds(std::chrono::steady_clock::now() - begin).count());
        const auto before = service.history().empty() ? std::chrono::system_clock::time_point {}
                                                      : service.history().back().timestamp;
        while (service.history().empty() || service.history().back().timestamp == before)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        added.push_back(service.history().back().value - resolver->own);
    }

    std::printf(
        "%-34s %9s %9s %9s %9s\n", "ms, of 300 lookups", "median", "95 %", "worst", "bound");
    const bool addedIsHeld = report("published less the resolver's own", added, kAddedBoundMs);
    const bool shareIsHeld = report("main thread, one tick", mainShare, kMainShareBoundMs);
    return addedIsHeld && shareIsHeld ? 0 : 1;
}
