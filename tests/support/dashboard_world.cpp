#include "support/dashboard_world.h"

#include "support/settle.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

std::shared_ptr<platform::WiFiClient> clientOf(std::shared_ptr<FakeWiFiInterface> interface)
{
    auto client = std::make_shared<FakeWiFiClient>();
    client->list = {std::move(interface)};
    return client;
}

/// Makes what belongs at `place`.
template <typename Made, typename Kept, typename... Arguments>
Made& makeAt(std::unique_ptr<Kept>& place, Arguments&&... arguments)
{
    auto made = std::make_unique<Made>(std::forward<Arguments>(arguments)...);
    auto& result = *made;
    place = std::move(made);
    return result;
}

} // namespace

DashboardWorld::DashboardWorld()
    : wifi(makeAt<wifi::WiFiService>(services.wifiService, clientOf(interface), clock, queue))
    , router(makeAt<probes::PingService>(
          services.routerPingService, u"192.0.2.1"_s, u"Router"_s, clock, routerConnections))
    , internet(makeAt<probes::PingService>(
          services.internetPingService, u"192.0.2.2"_s, u"Internet"_s, clock, internetConnections))
    , portal(makeAt<probes::CaptivePortalService>(
          services.captivePortalService, http, opener, clock, QUrl(u"https://probe.test/"_s)))
    , configuration(makeAt<FakeNetworkConfiguration>(platform.networkConfiguration))
{
    settle(queue);
}

/// Work that is left over still reads the clock.
DashboardWorld::~DashboardWorld()
{
    queue.waitForDone();
}

void DashboardWorld::link(const std::optional<platform::LinkReading>& reading)
{
    settle(queue);
    interface->reading = reading;
    clock.advance(wifi::WiFiService::minUpdateInterval);
    wifi.updateWiFiInfo();
    settle(queue);
    readings.refresh();
}

void DashboardWorld::lookUp()
{
    const auto count = dns.history().size();
    dns.performLookup();
    QTRY_COMPARE(dns.history().size(), count + 1);
    clock.advance(probes::DNSService::publicationInterval);
}

void DashboardWorld::ping(std::optional<std::chrono::milliseconds> routerTime,
    std::optional<std::chrono::milliseconds> internetTime)
{
    std::chrono::milliseconds passed {0};
    const auto end = [&](const probes::PingService& service, FakeConnections& connections,
                         std::optional<std::chrono::milliseconds> time) {
        if (!service.isRunning())
            return;
        clock.advance(time.value_or(passed) - passed);
        passed = time.value_or(passed);
        connections.tell(
            time ? platform::ConnectionState::Ready : platform::ConnectionState::Failed);
    };
    const bool isRouterFirst = routerTime < internetTime;
    if (isRouterFirst)
        end(router, routerConnections, routerTime);
    end(internet, internetConnections, internetTime);
    if (!isRouterFirst)
        end(router, routerConnections, routerTime);
    QCoreApplication::processEvents();
    clock.advance(probes::PingService::pingInterval - passed);
    settle(queue);
    readings.refresh();
}

} // namespace netvane::test
