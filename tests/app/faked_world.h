#pragma once

#include "app/app_delegate.h"
#include "app/notification_center.h"
#include "platform/application_activity.h"
#include "platform/platform.h"
#include "support/fake_appearance.h"
#include "support/fake_connections.h"
#include "support/fake_http_client.h"
#include "support/fake_http_transfers.h"
#include "support/fake_location_manager.h"
#include "support/fake_network_configuration.h"
#include "support/fake_network_scanner.h"
#include "support/fake_report_exits.h"
#include "support/fake_resolver.h"
#include "support/fake_status_notifier_host.h"
#include "support/fake_user_defaults.h"
#include "support/fake_user_notifications.h"
#include "support/fake_wifi_client.h"
#include "support/manual_clock.h"
#include "support/settle.h"

namespace netvane::test {

/// A platform of fakes, which are at hand, and a delegate on it once `makeDelegate` was called.
/// Knows of no views.
struct FakedWorld {
    FakedWorld()
    {
        platform.clock.reset(clock);
        platform.networkConfiguration.reset(network);
        platform.queues = std::make_unique<base::WorkQueues>();
        platform.wifiClient = std::make_shared<FakeWiFiClient>();
        platform.locationManager.reset(location);
        platform.urlOpener = std::make_unique<FakeUrlOpener>();
        platform.httpClient.reset(http);
        platform.networkScanner.reset(scanner);
        platform.httpTransfers.reset(transfers);
        platform.connections.reset(connections);
        platform.hopProbes = std::shared_ptr<FakeConnections>(platform.connections, connections);
        platform.userNotifications.reset(userNotifications);
        platform.clipboard = std::make_unique<FakeClipboard>();
        platform.savePanel = std::make_unique<FakeSavePanel>();
        platform.sharePicker = std::make_unique<FakeSharePicker>();
        platform.resolver = std::make_shared<FakeResolver>();
        platform.appearance.reset(appearance);
        platform.userDefaults.reset(defaults);
        platform.sleepMonitor = std::make_unique<platform::SleepMonitor>();
        platform.statusNotifierHost.reset(host);
    }

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

    ManualClock* clock = new ManualClock; // owned by the platform, as the rest
    FakeNetworkConfiguration* network = new FakeNetworkConfiguration;
    FakeAppearance* appearance = new FakeAppearance;
    FakeLocationManager* location = new FakeLocationManager;
    FakeNetworkScanner* scanner = new FakeNetworkScanner;
    FakeHttpTransfers* transfers = new FakeHttpTransfers;
    FakeUserNotifications* userNotifications = new FakeUserNotifications;
    FakeHttpClient* http = new FakeHttpClient;
    FakeConnections* connections = new FakeConnections(*clock);
    FakeUserDefaults* defaults = new FakeUserDefaults;
    FakeStatusNotifierHost* host = new FakeStatusNotifierHost;
    platform::Platform platform;
    platform::ApplicationActivity activity;
    app::NotificationCenter notifications;
    std::unique_ptr<app::AppDelegate> delegate;
};

} // namespace netvane::test
