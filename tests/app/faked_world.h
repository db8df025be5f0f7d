#pragma once

#include "app/app_delegate.h"
#include "app/notification_center.h"
#include "app/status_bar_manager.h"
#include "platform/application_activity.h"
#include "simulated/manual_clock.h"
#include "simulated/simulated_platform.h"
#include "support/settle.h"

namespace netvane::test {

/// The simulated platform without a Wi-Fi interface, and a delegate on it. Links no views.
struct FakedWorld : simulated::SimulatedPlatform {
    explicit FakedWorld(app::MakeViews makeViews = [](const auto&...) { return nullptr; })
        : SimulatedPlatform(std::make_unique<simulated::ManualClock>())
        , delegate(std::make_unique<app::AppDelegate>(
              platform, activity, notificationCenter, std::move(makeViews)))
    {
        wifi.list.clear();
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
    void clickItem(QSystemTrayIcon::ActivationReason reason = QSystemTrayIcon::Trigger)
    {
        Q_EMIT delegate->statusBarManager()->statusItem()->activated(reason);
    }

    simulated::ManualClock* clock = static_cast<simulated::ManualClock*>(platform.clock.get());
    platform::ApplicationActivity activity;
    app::NotificationCenter notificationCenter;
    std::unique_ptr<app::AppDelegate> delegate;
};

} // namespace netvane::test
