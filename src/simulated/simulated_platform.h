#pragma once

#include "platform/platform.h"
#include "simulated/connections.h"
#include "simulated/desktop.h"
#include "simulated/http.h"
#include "simulated/network.h"
#include "simulated/user_notifications.h"
#include "simulated/wifi.h"

// The room `simulated` replaces the operating system in the demonstration, the tests and the soak.
// It implements each abstract class of `platform` in memory; nothing is sent, and the given clock
// is the time. A part returns its public values, waits until the test decides a result, or calls
// its script.

namespace netvane::simulated {

/// All parts, assembled. `platform` may be moved away to a program; the references are valid as
/// long as it exists. Main thread.
struct SimulatedPlatform {
    explicit SimulatedPlatform(std::unique_ptr<base::Clock> clock);

    platform::Platform platform;
    std::shared_ptr<WiFiInterface> interface = std::make_shared<WiFiInterface>();
    std::shared_ptr<Resolver> resolver = std::make_shared<Resolver>();
    base::Clock& clock;
    base::WorkQueues& queues;
    NetworkConfiguration& network;
    NameServerClient& nameServers;
    platform::RadioMonitor& radioEvents;
    WiFiClient& wifi; ///< has the one interface
    AirReader& air;
    NetworkScanner& scanner;
    LocationManager& location;
    Appearance& appearance;
    StatusNotifierHost& host;
    VerdictOutlet& verdictOutlet;
    UrlOpener& opener;
    HttpClient& http;
    Connections& connections; ///< those of hop probes, too
    UserDefaults& defaults;
    UserNotifications& notifications;
    Clipboard& clipboard;
    SavePanel& savePanel;
    SharePicker& sharePicker;

private:
    template <typename Part, typename Owner, typename... Arguments>
    static Part& make(Owner& owner, Arguments&... arguments);
};

} // namespace netvane::simulated
