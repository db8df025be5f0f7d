#pragma once

// This room defines what the services need from the operating system, as small abstract classes and
// plain values. The rooms radio, net, desktop and shell implement them for a real system, the room
// simulated in memory. `Platform` contains one object of each.

#include "base/clock.h"
#include "base/work_queues.h"
#include "platform/air.h"
#include "platform/appearance.h"
#include "platform/connection.h"
#include "platform/exports.h"
#include "platform/hop_probe.h"
#include "platform/http_client.h"
#include "platform/instance_claim.h"
#include "platform/location_manager.h"
#include "platform/name_server_client.h"
#include "platform/network_configuration.h"
#include "platform/network_scanner.h"
#include "platform/radio_monitor.h"
#include "platform/resolver.h"
#include "platform/route_monitor.h"
#include "platform/sleep_monitor.h"
#include "platform/status_notifier_host.h"
#include "platform/url_opener.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "platform/verdict_outlet.h"
#include "platform/wifi_client.h"

#include <memory>

namespace netvane::platform {

/// Everything that the services need from the operating system. Created once; outlives the
/// services.
struct Platform {
    // Used by work that may still run during destruction, so it is destroyed after the queues.
    std::unique_ptr<base::Clock> clock;
    std::unique_ptr<NetworkConfiguration> networkConfiguration;

    std::unique_ptr<base::WorkQueues> queues; ///< waits for running work when destroyed
    std::unique_ptr<QObject> systemBus; ///< only owned here; the members below use it
    std::unique_ptr<QObject> sessionBus; ///< likewise
    std::shared_ptr<WiFiClient> wifiClient; ///< null if the kernel offers no netlink
    std::shared_ptr<AirReader> airReader; ///< shared with reads in the background
    std::unique_ptr<NetworkScanner> networkScanner;
    std::unique_ptr<RadioMonitor> radioMonitor; ///< null if the kernel offers no netlink
    std::unique_ptr<LocationManager> locationManager;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<StatusNotifierHost> statusNotifierHost;
    std::unique_ptr<InstanceClaim> instanceClaim;
    std::unique_ptr<VerdictOutlet> verdictOutlet; ///< goes before the claim
    std::unique_ptr<SleepMonitor> sleepMonitor;
    std::unique_ptr<RouteMonitor> routeMonitor;
    std::unique_ptr<UrlOpener> urlOpener;
    std::unique_ptr<HttpClient> httpClient;
    std::shared_ptr<ConnectionFactory> connections;
    std::shared_ptr<HopProbeFactory> hopProbes;
    std::unique_ptr<NameServerClient> nameServers; ///< null without the library for it
    std::shared_ptr<Resolver> resolver; ///< shared with lookups that may outlive all other objects
    std::unique_ptr<UserDefaults> userDefaults;
    QString historyFile; ///< what is measured is remembered there; empty: nowhere
    std::unique_ptr<UserNotificationCenter> userNotifications;
    std::unique_ptr<Clipboard> clipboard;
    std::unique_ptr<SavePanel> savePanel;
    std::unique_ptr<SharePicker> sharePicker;
};

} // namespace netvane::platform
