#pragma once

#include "base/work_queues.h"
#include "platform/platform.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "support/fake_connections.h"
#include "support/fake_http_client.h"
#include "support/fake_location_manager.h"
#include "support/fake_network_configuration.h"
#include "support/fake_resolver.h"
#include "support/fake_wifi_client.h"
#include "support/manual_clock.h"
#include "ui/state/dashboard_readings.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

namespace netvane::test {

/// The services that a dashboard shows, on fakes, and a dashboard's readings of them. There is a
/// link that tells nothing, nothing is probed, and nothing has been read.
class DashboardWorld {
public:
    ManualClock clock;
    base::WorkQueue queue;
    std::shared_ptr<FakeWiFiInterface> interface = std::make_shared<FakeWiFiInterface>();
    FakeLocationManager locationManager;
    platform::ApplicationActivity activity;
    wifi::LocationPermissionService permission {locationManager, activity};
    platform::Platform platform; ///< holds no more than the readings ask
    services::Services services {platform};
    wifi::WiFiService& wifi;
    FakeConnections routerConnections {clock};
    FakeConnections internetConnections {clock};
    probes::PingService& router;
    probes::PingService& internet;
    FakeHttpClient http;
    FakeUrlOpener opener;
    probes::CaptivePortalService& portal;
    FakeNetworkConfiguration& configuration;
    probes::NetworkUtils network {configuration, queue};
    std::shared_ptr<FakeResolver> resolver = std::make_shared<FakeResolver>();
    probes::DNSService dns {network, resolver, clock, QStringLiteral("host.test")};
    ui::DashboardReadings readings {services};

    DashboardWorld();
    ~DashboardWorld();

    /// The next pass over the link, and with it the readings, find this.
    void link(const std::optional<platform::LinkReading>& reading);
    /// The probes of the services that were started end after these times, or are lost without one;
    /// then the next ones begin.
    void ping(std::optional<std::chrono::milliseconds> routerTime,
        std::optional<std::chrono::milliseconds> internetTime);
    /// One lookup that ends at once.
    void lookUp();
};

} // namespace netvane::test
