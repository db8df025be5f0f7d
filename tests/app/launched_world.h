#pragma once

#include "app/app_delegate.h"
#include "app/dashboard_views.h"
#include "app/notification_center.h"
#include "platform/application_activity.h"
#include "platform/platform.h"
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
#include "support/view_fixture.h"

namespace netvane::test {

/// Windows with something of a known height in them.
class TestViews final : public app::DashboardViews {
public:
    app::HostedView popoverView(const app::AppDelegate&) override { return make(); }
    app::HostedView detailedWindowView(const app::AppDelegate&) override
    {
        auto view = make();
        windowState = view.state;
        return view;
    }

    int wantedHeight = 500;
    int made = 0;
    std::weak_ptr<void> windowState; ///< what the last detailed window shows

private:
    app::HostedView make()
    {
        ++made;
        return {QUrl(QStringLiteral("qrc:/tests/test_view.qml")),
            {{QStringLiteral("wantedHeight"), wantedHeight}}, std::make_shared<int>()};
    }
};

/// The delegate on a platform of fakes, which are at hand.
struct LaunchedWorld {
    LaunchedWorld()
    {
        platform.clock.reset(clock);
        platform.networkConfiguration.reset(network);
        platform.queues = std::make_unique<platform::WorkQueues>();
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
        platform.appearance = std::make_unique<FakeAppearance>();
        platform.userDefaults.reset(defaults);
        platform.sleepMonitor = std::make_unique<platform::SleepMonitor>();
        platform.statusNotifierHost.reset(host);
        delegate = std::make_unique<app::AppDelegate>(platform, activity, notifications, views);
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
    FakeLocationManager* location = new FakeLocationManager;
    FakeNetworkScanner* scanner = new FakeNetworkScanner;
    FakeHttpTransfers* transfers = new FakeHttpTransfers;
    FakeUserNotifications* userNotifications = new FakeUserNotifications;
    FakeHttpClient* http = new FakeHttpClient;
    FakeConnections* connections = new FakeConnections(*clock);
    FakeUserDefaults* defaults = new FakeUserDefaults;
    FakeStatusNotifierHost* host = new FakeStatusNotifierHost;
    TestViews views;
    platform::Platform platform;
    platform::ApplicationActivity activity;
    app::NotificationCenter notifications;
    std::unique_ptr<app::AppDelegate> delegate;
};

} // namespace netvane::test
