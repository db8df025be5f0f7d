#pragma once

#include "base/work_queues.h"
#include "diagnostics/channel_analysis_service.h"
#include "diagnostics/speed_test_service.h"
#include "diagnostics/traceroute_service.h"
#include "insights/onboarding_service.h"
#include "platform/application_activity.h"
#include "probes/captive_portal_service.h"
#include "probes/dns_service.h"
#include "probes/ping_service.h"
#include "services/services.h"
#include "simulated/manual_clock.h"
#include "simulated/simulated_platform.h"
#include "support/view_fixture.h"
#include "ui/state/popover_state.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

namespace netvane::test {

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

/// A popover's state on simulated services. The link has no values, no probe runs, and nothing has
/// been read.
class World {
public:
    World();
    ~World();

    /// The next pass over the link, and with it the readings, find this.
    void link(const std::optional<platform::LinkReading>& reading);
    /// The probes that were started end after these times, that of the router first, or are lost
    /// without one; then the next ones begin.
    void ping(std::optional<std::chrono::milliseconds> routerTime,
        std::optional<std::chrono::milliseconds> internetTime);
    /// One look-up that ends at once.
    void lookUp();
    void permit(platform::AuthorizationStatus status);
    /// All probes of the next hop are answered after 12 ms, or none is.
    void hop(const QString& address);

    ViewFixture show(const QString& view, QObject& viewState, int width = 388)
    {
        return ViewFixture(view, {{u"viewState"_s, QVariant::fromValue(&viewState)}}, width);
    }
    ViewFixture dashboard() { return show(u"DashboardColumn"_s, state); }

private:
    std::unique_ptr<simulated::ManualClock> m_clock = std::make_unique<simulated::ManualClock>();

public:
    simulated::ManualClock& clock = *m_clock;
    simulated::SimulatedPlatform simulated {std::move(m_clock)};
    simulated::Connections routerConnections {clock};
    simulated::Connections internetConnections {clock};
    platform::ApplicationActivity activity;
    services::Services services {simulated.platform};
    std::optional<ui::PopoverState> popover;
    ui::PopoverState& state;
};

} // namespace netvane::test
