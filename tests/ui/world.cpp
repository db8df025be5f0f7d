#include "world.h"

#include "support/settle.h"

#include <QTest>

namespace netvane::test {

World::World()
    : state([this]() -> ui::PopoverState& {
        simulated.location.status = platform::AuthorizationStatus::AuthorizedAlways;
        services.makeAll(activity);
        services.routerPingService = std::make_unique<probes::PingService>(
            u"192.0.2.1"_s, u"Router"_s, clock, routerConnections);
        services.internetPingService = std::make_unique<probes::PingService>(
            u"192.0.2.2"_s, u"Internet"_s, clock, internetConnections);
        return popover.emplace(services);
    }())
{
    settle(simulated.queues.userInitiated);
}

/// Running work still reads the clock.
World::~World()
{
    settle(simulated.queues.userInitiated);
}

void World::link(const std::optional<platform::LinkReading>& reading)
{
    settle(simulated.queues.userInitiated);
    simulated.interface->reading = reading;
    clock.advance(wifi::WiFiService::minUpdateInterval);
    services.wifiService->updateWiFiInfo();
    settle(simulated.queues.userInitiated);
    state.refresh();
}

void World::ping(std::optional<std::chrono::milliseconds> routerTime,
    std::optional<std::chrono::milliseconds> internetTime)
{
    std::chrono::milliseconds passed {0};
    const auto end = [&](const auto& service, auto& connections, const auto& time) {
        if (!service->isRunning())
            return;
        clock.advance(time.value_or(passed) - passed);
        passed = time.value_or(passed);
        connections.tell(
            time ? platform::ConnectionState::Ready : platform::ConnectionState::Failed);
    };
    end(services.routerPingService, routerConnections, routerTime);
    end(services.internetPingService, internetConnections, internetTime);
    QCoreApplication::processEvents();
    clock.advance(probes::PingService::pingInterval - passed);
    settle(simulated.queues.userInitiated);
    state.refresh();
}

void World::lookUp()
{
    auto& dns = *services.dnsService;
    const auto count = dns.history().size();
    dns.performLookup();
    QTRY_COMPARE(dns.history().size(), count + 1);
    clock.advance(probes::DNSService::publicationInterval);
}

void World::permit(platform::AuthorizationStatus status)
{
    simulated.location.change(status);
    QCoreApplication::processEvents();
}

void World::hop(const QString& address)
{
    using Service = diagnostics::TracerouteService;
    for (int probe = 0; probe < Service::probesPerHop; ++probe) {
        clock.advance(address.isEmpty() ? Service::timeoutPerHop : 12ms);
        if (!address.isEmpty())
            simulated.connections.answer(address);
        QCoreApplication::processEvents();
        clock.advance(Service::pauseAfterProbe);
    }
}

} // namespace netvane::test
