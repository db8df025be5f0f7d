#include "simulated/simulated_platform.h"

namespace netvane::simulated {

template <typename Part, typename Owner, typename... Arguments>
Part& SimulatedPlatform::make(Owner& owner, Arguments&... arguments)
{
    auto* part = new Part(arguments...);
    owner.reset(part);
    return *part;
}

SimulatedPlatform::SimulatedPlatform(std::unique_ptr<base::Clock> itsClock)
    : clock(*itsClock)
    , queues(make<base::WorkQueues>(platform.queues))
    , network(make<NetworkConfiguration>(platform.networkConfiguration))
    , nameServers(make<NameServerClient>(platform.nameServers))
    , radioEvents(make<platform::RadioMonitor>(platform.radioMonitor))
    , wifi(make<WiFiClient>(platform.wifiClient))
    , air(make<AirReader>(platform.airReader))
    , scanner(make<NetworkScanner>(platform.networkScanner))
    , location(make<LocationManager>(platform.locationManager))
    , appearance(make<Appearance>(platform.appearance))
    , host(make<StatusNotifierHost>(platform.statusNotifierHost))
    , verdictOutlet(make<VerdictOutlet>(platform.verdictOutlet))
    , opener(make<UrlOpener>(platform.urlOpener))
    , http(make<HttpClient>(platform.httpClient, clock))
    , connections(make<Connections>(platform.connections, clock))
    , defaults(make<UserDefaults>(platform.userDefaults))
    , notifications(make<UserNotifications>(platform.userNotifications))
    , clipboard(make<Clipboard>(platform.clipboard))
    , savePanel(make<SavePanel>(platform.savePanel))
    , sharePicker(make<SharePicker>(platform.sharePicker))
{
    wifi.list = {interface};
    platform.clock = std::move(itsClock);
    platform.resolver = resolver;
    platform.hopProbes = {platform.connections, &connections};
    platform.instanceClaim = std::make_unique<InstanceClaim>();
    platform.sleepMonitor = std::make_unique<platform::SleepMonitor>();
    platform.routeMonitor = std::make_unique<platform::RouteMonitor>();
}

} // namespace netvane::simulated
