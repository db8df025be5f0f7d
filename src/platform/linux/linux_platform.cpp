#include "platform/linux/bus_link.h"
#include "platform/linux/nl80211_wifi_client.h"
#include "platform/linux/scan_permission.h"
#include "platform/platform.h"
#include "platform/system_clock.h"

namespace netvane::platform {

Platform makePlatform()
{
    Platform platform;
    platform.queues = std::make_unique<WorkQueues>();
    platform.clock = std::make_unique<SystemClock>();
    auto systemBus = std::make_unique<BusLink>(
        QDBusConnection::SystemBus, *platform.clock, platform.queues->userInitiated);
    platform.wifiClient = Nl80211WiFiClient::create();
    platform.locationManager = std::make_unique<ScanPermission>(*systemBus);
    platform.systemBus = std::move(systemBus);
    return platform;
}

} // namespace netvane::platform
