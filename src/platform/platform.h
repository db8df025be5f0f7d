#pragma once

#include "platform/clock.h"
#include "platform/location_manager.h"
#include "platform/wifi_client.h"
#include "platform/work_queues.h"

#include <memory>

namespace netvane::platform {

/// Everything that the services need from the operating system, made once and living as long as
/// they do.
struct Platform {
    std::unique_ptr<Clock> clock; ///< first made and last gone: work that is left over may read it
    std::unique_ptr<WorkQueues> queues; ///< waits for what runs when it goes
    std::unique_ptr<QObject> systemBus; ///< only kept here, for those below that speak on it
    std::shared_ptr<WiFiClient> wifiClient; ///< null when the kernel offers no netlink to us
    std::unique_ptr<LocationManager> locationManager;
};

/// The real one.
Platform makePlatform();

} // namespace netvane::platform
