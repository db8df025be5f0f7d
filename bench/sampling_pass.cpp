// What one sampling pass costs: the main thread's share of it, and all of it. On a machine with
// Wi-Fi the real interface is read; elsewhere, or with --replayed, one whose answers are made up,
// so that only the main thread's share means anything.

#include "figure.h"
#include "system/linux_platform.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace netvane;

namespace {

constexpr int kUsualPasses = 200;
constexpr double kMainShareBoundMs = 0.2;
constexpr double kWholeBoundMs = 3.0;

double cpuMs(clockid_t clock)
{
    timespec time {};
    ::clock_gettime(clock, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// A link whose signal is another at each pass, so that each is published.
class MadeUpInterface : public platform::WiFiInterface {
public:
    bool powerOn() const override { return true; }
    std::optional<platform::LinkReading> readLink() override
    {
        return platform::LinkReading {.ssid = QStringLiteral("Home"),
            .signalDbm = -40 - m_reads++ % 50,
            .noiseDbm = -92,
            .transmitRateMbps = 866.7,
            .band = platform::ChannelBand::FiveGHz};
    }

private:
    int m_reads = 0;
};

class MadeUpClient : public platform::WiFiClient {
public:
    std::vector<std::shared_ptr<platform::WiFiInterface>> interfaces() override
    {
        return {std::make_shared<MadeUpInterface>()};
    }
};

struct Figures {
    double mainMs = 0;
    double wholeMs = 0;
};

Figures onePass(wifi::WiFiService& service)
{
    QEventLoop loop;
    QObject::connect(&service, &wifi::WiFiService::passFinished, &loop, &QEventLoop::quit);
    const Figures before {cpuMs(CLOCK_THREAD_CPUTIME_ID), cpuMs(CLOCK_PROCESS_CPUTIME_ID)};
    service.updateWiFiInfo();
    loop.exec();
    return {cpuMs(CLOCK_THREAD_CPUTIME_ID) - before.mainMs,
        cpuMs(CLOCK_PROCESS_CPUTIME_ID) - before.wholeMs};
}

void waitForThrottle()
{
    timespec pause {.tv_sec = 0, .tv_nsec = 101'000'000};
    ::nanosleep(&pause, nullptr);
}

double at(std::vector<double>& values, double quantile)
{
    std::ranges::sort(values);
    return values[size_t(quantile * double(values.size() - 1))];
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    auto platform = system::makePlatform();
    const bool isReal = !QCoreApplication::arguments().contains(QStringLiteral("--replayed"))
        && platform.wifiClient && !platform.wifiClient->interfaces().empty();
    if (!isReal)
        platform.wifiClient = std::make_shared<MadeUpClient>();
    platform::ApplicationActivity activity;
    wifi::LocationPermissionService permission(*platform.locationManager, activity);
    wifi::WiFiService service(platform.wifiClient, *platform.clock, platform.queues->userInitiated);
    service.setLocationPermissionService(permission);

    const int asked = QCoreApplication::arguments().last().toInt();
    const int passes = asked > 0 ? asked : kUsualPasses;
    std::vector<double> mainMs;
    std::vector<double> wholeMs;
    for (int i = 0; i < passes; ++i) {
        while (service.isUpdating())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        waitForThrottle();
        const auto figures = onePass(service);
        mainMs.push_back(figures.mainMs);
        wholeMs.push_back(figures.wholeMs);
    }
    const double main = at(mainMs, 0.5);
    const double whole = at(wholeMs, 0.5);
    std::printf("sampling pass (%s), CPU ms, median / 95th percentile of %d\n",
        isReal ? "real interface" : "made-up interface", passes);
    std::printf("  main thread's share   %.3f / %.3f   at most %.1f\n", main, at(mainMs, 0.95),
        kMainShareBoundMs);
    std::printf("  whole pass            %.3f / %.3f   at most %.1f\n", whole, at(wholeMs, 0.95),
        kWholeBoundMs);
    const auto record = [&](const QString& name, const std::vector<double>& values, double bound) {
        bench::record(
            {.name = name, .unit = QStringLiteral("ms"), .values = values, .bound = bound});
    };
    record(QStringLiteral("a look at the link, CPU of the main thread"), mainMs, kMainShareBoundMs);
    record(QStringLiteral("a look at the link, CPU of all of it"), wholeMs, kWholeBoundMs);
    return main <= kMainShareBoundMs && whole <= kWholeBoundMs ? 0 : 1;
}
