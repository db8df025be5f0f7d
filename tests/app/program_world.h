#pragma once

#include "faked_world.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "ui/state/popover_state.h"
#include "wifi/wifi_service.h"
#include "windows/quick_views.h"
#include "windows/quick_window.h"

#include <QQuickItem>
#include <QTest>

namespace netvane::test {

/// The program with its real views on a desktop with a status area, with its services running.
struct Program : FakedWorld {
    explicit Program(bool isIntroduced = true)
        : FakedWorld(windows::makeQuickViews)
    {
        wifi.list = {interface};
        defaults.setBoolean(QStringLiteral("netvane.onboarding.completed"), isIntroduced);
        location.status = platform::AuthorizationStatus::AuthorizedAlways;
        host.setPresent(true);
        launchAll();
        click();
    }
    ~Program()
    {
        delegate->applicationWillTerminate();
        settle();
    }

    shell::PopoverWindow& popover() { return *delegate->popover(); }
    void click()
    {
        clickItem();
        if (popover().isShown())
            (void)QTest::qWaitForWindowActive(popover().window());
    }
    QQuickItem& root() { return windows::rootOf(*popover().window()); }
    ui::PopoverState& state() { return *root().property("viewState").value<ui::PopoverState*>(); }
    QQuickItem& windowRoot()
    {
        delegate->statusBarManager()->openInWindow();
        auto& window = delegate->windowController()->window();
        (void)QTest::qWaitForWindowActive(&window);
        return windows::rootOf(window);
    }
    /// The next pass over the link finds this.
    void link(const platform::LinkReading& reading)
    {
        settle();
        interface->reading = reading;
        clock->advance(wifi::WiFiService::minUpdateInterval);
        delegate->wifiService()->updateWiFiInfo();
        settle();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QGuiApplication::focusWindow(), key, modifiers);
        QCoreApplication::processEvents();
    }
};

inline const platform::LinkReading kHome {.ssid = QStringLiteral("Home"),
    .signalDbm = -50,
    .noiseDbm = -92,
    .transmitRateMbps = 300,
    .band = platform::ChannelBand::FiveGHz,
    .channel = platform::WiFiChannel {36, platform::ChannelBand::FiveGHz},
    .interfaceName = QStringLiteral("wlan0")};

} // namespace netvane::test
