#pragma once

#include "app/status_bar_manager.h"
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

/// The program with its real views; the introduction was seen.
struct Program : FakedWorld {
    explicit Program(bool isIntroduced = true, bool isOpened = true)
    {
        makeDelegate(windows::makeQuickViews);
        simulated.wifi.list = {interface};
        defaults->setBoolean(QStringLiteral("netvane.onboarding.completed"), isIntroduced);
        location->status = platform::AuthorizationStatus::AuthorizedAlways;
        host->setPresent(true);
        launchAll();
        if (isOpened)
            click();
    }
    ~Program()
    {
        delegate->applicationWillTerminate();
        settle();
    }

    void click()
    {
        Q_EMIT delegate->statusBarManager()->statusItem()->activated(QSystemTrayIcon::Trigger);
        (void)QTest::qWaitForWindowActive(delegate->popover()->window());
    }
    QQuickItem& root() { return windows::rootOf(*delegate->popover()->window()); }
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
    void key(Qt::Key key)
    {
        QTest::keyClick(QGuiApplication::focusWindow(), key);
        QCoreApplication::processEvents();
    }

    std::shared_ptr<simulated::WiFiInterface> interface = simulated.interface;
};

/// The visible items below `item` that have a text, by that text, in the order of the tree.
inline QStringList texts(QQuickItem& item)
{
    QStringList found;
    if (!item.isVisible())
        return found;
    if (item.inherits("QQuickText") && !item.property("text").toString().isEmpty())
        found.append(item.property("text").toString());
    for (auto* child : item.childItems())
        found.append(texts(*child));
    return found;
}

inline QQuickItem* control(QQuickItem& item, const QString& text)
{
    if (!item.isVisible())
        return nullptr;
    if (item.inherits("QQuickAbstractButton") && item.property("text") == text)
        return &item;
    for (auto* child : item.childItems()) {
        if (auto* found = control(*child, text))
            return found;
    }
    return nullptr;
}

/// Presses it as the keyboard would.
inline bool press(QQuickItem& root, const QString& text)
{
    auto* found = control(root, text);
    if (!found || !found->isEnabled())
        return false;
    found->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(root.window(), Qt::Key_Space);
    QCoreApplication::processEvents();
    return true;
}

inline bool isShown(QQuickItem& root, const QString& name)
{
    const auto* item = root.findChild<QQuickItem*>(name);
    return item && item->isVisible();
}

inline const platform::LinkReading kHome {.ssid = QStringLiteral("Home"),
    .signalDbm = -50,
    .noiseDbm = -92,
    .transmitRateMbps = 300,
    .band = platform::ChannelBand::FiveGHz,
    .channel = platform::WiFiChannel {36, platform::ChannelBand::FiveGHz},
    .interfaceName = QStringLiteral("wlan0")};

} // namespace netvane::test
