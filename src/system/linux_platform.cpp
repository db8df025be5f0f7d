#include "system/linux_platform.h"

#include "base/system_clock.h"
#include "bus/bus_link.h"
#include "desktop/bus_name_claim.h"
#include "desktop/bus_verdict.h"
#include "desktop/freedesktop_notifications.h"
#include "desktop/portal_appearance.h"
#include "desktop/portal_proxies.h"
#include "desktop/session_status_notifier_host.h"
#include "desktop/settings_file.h"
#include "desktop/suspend_watch.h"
#include "net/cares_name_servers.h"
#include "net/linux_network_configuration.h"
#include "net/route_watch.h"
#include "net/socket_connections.h"
#include "net/socket_hop_probes.h"
#include "net/system_resolver.h"
#include "net/web/curl_http_client.h"
#include "radio/air/nl80211_air_reader.h"
#include "radio/interface_choice.h"
#include "radio/linux_network_scanner.h"
#include "radio/linux_radio_monitor.h"
#include "radio/nl80211_wifi_client.h"
#include "radio/scan_permission.h"

namespace netvane::system {

platform::Platform makePlatform()
{
    platform::Platform platform;
    platform.queues = std::make_unique<base::WorkQueues>();
    platform.clock = std::make_unique<base::SystemClock>();
    const auto linkTo = [&platform](QDBusConnection::BusType bus) {
        return std::make_unique<bus::BusLink>(bus, *platform.clock, platform.queues->userInitiated);
    };
    auto systemBus = linkTo(QDBusConnection::SystemBus);
    auto sessionBus = linkTo(QDBusConnection::SessionBus);
    const auto choice = std::make_shared<radio::InterfaceChoice>();
    platform.wifiClient = radio::Nl80211WiFiClient::create(choice);
    platform.airReader = std::make_shared<radio::Nl80211AirReader>(choice);
    platform.networkScanner = std::make_unique<radio::LinuxNetworkScanner>(
        radio::ScanContext {*systemBus, *platform.clock, platform.queues->userInitiated,
            std::make_shared<radio::Nl80211ScanKernel>(choice)},
        platform.wifiClient);
    platform.radioMonitor = std::make_unique<radio::LinuxRadioMonitor>(
        *platform.clock, platform.queues->userInitiated);
    platform.locationManager = std::make_unique<radio::ScanPermission>(*systemBus);
    platform.appearance = std::make_unique<desktop::PortalAppearance>(*sessionBus);
    platform.statusNotifierHost = std::make_unique<desktop::SessionStatusNotifierHost>(*sessionBus);
    auto claim = std::make_unique<desktop::BusNameClaim>(*sessionBus, *platform.clock);
    platform.verdictOutlet = std::make_unique<desktop::BusVerdict>(claim->object(), *sessionBus);
    platform.instanceClaim = std::move(claim);
    platform.sleepMonitor = std::make_unique<desktop::SuspendWatch>(*platform.clock);
    platform.routeMonitor = std::make_unique<net::RouteWatch>(*platform.clock);
    platform.userNotifications = std::make_unique<desktop::FreedesktopNotifications>(*sessionBus);
    platform.networkConfiguration = std::make_unique<net::LinuxNetworkConfiguration>();
    platform.httpClient = std::make_unique<net::CurlHttpClient>(*platform.clock,
        [proxies = desktop::PortalProxies(*sessionBus)](
            const auto& url, auto* owner, const auto& take) { proxies.lookUp(url, owner, take); });
    platform.connections = std::make_shared<net::SocketConnections>(*platform.clock);
    platform.hopProbes = std::make_shared<net::SocketHopProbes>(*platform.clock);
    platform.nameServers = std::make_unique<net::CaresNameServers>(*platform.clock);
    platform.resolver = std::make_shared<net::SystemResolver>();
    platform.userDefaults = std::make_unique<desktop::SettingsFile>(
        desktop::SettingsFile::defaultPath(), platform.queues->utility);
    platform.systemBus = std::move(systemBus);
    platform.sessionBus = std::move(sessionBus);
    return platform;
}

} // namespace netvane::system
