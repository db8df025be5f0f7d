#pragma once

// This room says what the services need from the operating system, as small abstract classes and
// plain values. Nothing is implemented here: the rooms radio, net, desktop and shell do that for a
// real system, and the room simulated does it in memory. `Platform` is the sum of it.

#include "base/clock.h"
#include "base/work_queues.h"
#include "platform/appearance.h"
#include "platform/clipboard.h"
#include "platform/connection.h"
#include "platform/hop_probe.h"
#include "platform/http_client.h"
#include "platform/instance_claim.h"
#include "platform/location_manager.h"
#include "platform/network_configuration.h"
#include "platform/network_scanner.h"
#include "platform/resolver.h"
#include "platform/save_panel.h"
#include "platform/share_picker.h"
#include "platform/sleep_monitor.h"
#include "platform/status_notifier_host.h"
#include "platform/url_opener.h"
#include "platform/user_defaults.h"
#include "platform/user_notifications.h"
#include "platform/wifi_client.h"

#include <memory>

namespace netvane::platform {

/// Everything that the services need from the operating system, made once and living as long as
/// they do.
struct Platform {
    // Used by work that may still run when all this goes, so it goes after the queues.
    std::unique_ptr<base::Clock> clock;
    std::unique_ptr<NetworkConfiguration> networkConfiguration;

    std::unique_ptr<base::WorkQueues> queues; ///< waits for what runs when it goes
    std::unique_ptr<QObject> systemBus; ///< only kept here, for those below that speak on it
    std::unique_ptr<QObject> sessionBus; ///< likewise
    std::shared_ptr<WiFiClient> wifiClient; ///< null when the kernel offers no netlink to us
    std::unique_ptr<NetworkScanner> networkScanner;
    std::unique_ptr<LocationManager> locationManager;
    std::unique_ptr<Appearance> appearance;
    std::unique_ptr<StatusNotifierHost> statusNotifierHost;
    std::unique_ptr<InstanceClaim> instanceClaim;
    std::unique_ptr<SleepMonitor> sleepMonitor;
    std::unique_ptr<UrlOpener> urlOpener;
    std::unique_ptr<HttpClient> httpClient;
    std::shared_ptr<ConnectionFactory> connections;
    std::shared_ptr<HopProbeFactory> hopProbes;
    std::shared_ptr<Resolver> resolver; ///< shared with lookups that outlive everything else
    std::unique_ptr<UserDefaults> userDefaults;
    std::unique_ptr<UserNotificationCenter> userNotifications;
    std::unique_ptr<Clipboard> clipboard;
    std::unique_ptr<SavePanel> savePanel;
    std::unique_ptr<SharePicker> sharePicker;
};

} // namespace netvane::platform
