#include "platform/linux/bus_link.h"
#include "platform/linux/bus_name_claim.h"
#include "platform/linux/freedesktop_notifications.h"
#include "platform/linux/linux_network_configuration.h"
#include "platform/linux/linux_network_scanner.h"
#include "platform/linux/nl80211_wifi_client.h"
#include "platform/linux/portal_appearance.h"
#include "platform/linux/qt_http_client.h"
#include "platform/linux/qt_http_transfers.h"
#include "platform/linux/scan_permission.h"
#include "platform/linux/session_status_notifier_host.h"
#include "platform/linux/settings_file.h"
#include "platform/linux/socket_connections.h"
#include "platform/linux/socket_hop_probes.h"
#include "platform/linux/suspend_watch.h"
#include "platform/linux/system_resolver.h"
#include "platform/platform.h"
#include "platform/system_clock.h"

namespace netvane::platform {

Platform makePlatform()
{
    Platform platform;
    platform.queues = std::make_unique<WorkQueues>();
    platform.clock = std::make_unique<SystemClock>();
    const auto linkTo = [&platform](QDBusConnection::BusType bus) {
        return std::make_unique<BusLink>(bus, *platform.clock, platform.queues->userInitiated);
    };
    auto systemBus = linkTo(QDBusConnection::SystemBus);
    auto sessionBus = linkTo(QDBusConnection::SessionBus);
    platform.wifiClient = Nl80211WiFiClient::create();
    platform.networkScanner = std::make_unique<LinuxNetworkScanner>(
        ScanMeans {*systemBus, *platform.clock, platform.queues->userInitiated,
            std::make_shared<Nl80211ScanKernel>()},
        platform.wifiClient);
    platform.locationManager = std::make_unique<ScanPermission>(*systemBus);
    platform.appearance = std::make_unique<PortalAppearance>(*sessionBus);
    platform.statusNotifierHost = std::make_unique<SessionStatusNotifierHost>(*sessionBus);
    platform.instanceClaim = std::make_unique<BusNameClaim>(*sessionBus, *platform.clock);
    platform.sleepMonitor = std::make_unique<SuspendWatch>(*platform.clock);
    platform.userNotifications = std::make_unique<FreedesktopNotifications>(*sessionBus);
    platform.networkConfiguration = std::make_unique<LinuxNetworkConfiguration>();
    platform.httpClient = std::make_unique<QtHttpClient>(*platform.clock, platform.queues->utility);
    platform.httpTransfers = std::make_unique<QtHttpTransfers>(*platform.clock);
    platform.connections = std::make_shared<SocketConnections>(*platform.clock);
    platform.hopProbes = std::make_shared<SocketHopProbes>(*platform.clock);
    platform.resolver = std::make_shared<SystemResolver>();
    platform.userDefaults = std::make_unique<SettingsFile>(SettingsFile::defaultPath());
    platform.systemBus = std::move(systemBus);
    platform.sessionBus = std::move(sessionBus);
    return platform;
}

} // namespace netvane::platform
