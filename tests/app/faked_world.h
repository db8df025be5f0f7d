#pragma once

#include "app/app_delegate.h"
#include "app/notification_center.h"
#include "platform/application_activity.h"
#include "platform/platform.h"
#include "simulated/manual_clock.h"
#include "simulated/simulated_platform.h"
#include "support/settle.h"

namespace netvane::test {

/// The simulated platform without a Wi-Fi interface, and a delegate on it once `makeDelegate` was
/// called. Knows of no views.
struct FakedWorld {
    FakedWorld() { simulated.wifi.list.clear(); }

    void makeDelegate(app::MakeViews makeViews)
    {
        delegate = std::make_unique<app::AppDelegate>(
            platform, activity, notifications, std::move(makeViews));
    }

    void launch()
    {
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
    }
    /// Until the services run.
    void launchAll()
    {
        launch();
        settle();
    }
    void settle() { test::settle(platform.queues->userInitiated); }

    simulated::ManualClock* clock = new simulated::ManualClock; // owned by the platform
    simulated::SimulatedPlatform simulated {std::unique_ptr<base::Clock>(clock)};
    platform::Platform& platform = simulated.platform;
    simulated::NetworkConfiguration* network = &simulated.network;
    simulated::Appearance* appearance = &simulated.appearance;
    simulated::LocationManager* location = &simulated.location;
    simulated::NetworkScanner* scanner = &simulated.scanner;
    simulated::HttpTransfers* transfers = &simulated.transfers;
    simulated::UserNotifications* userNotifications = &simulated.notifications;
    simulated::HttpClient* http = &simulated.http;
    simulated::Connections* connections = &simulated.connections;
    simulated::UserDefaults* defaults = &simulated.defaults;
    simulated::StatusNotifierHost* host = &simulated.host;
    platform::ApplicationActivity activity;
    app::NotificationCenter notifications;
    std::unique_ptr<app::AppDelegate> delegate;
};

} // namespace netvane::test
