#pragma once

#include "base/clock.h"
#include "platform/appearance.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

namespace netvane::wifi {
class WiFiService;
}

namespace netvane::shell {
class PopoverWindow;
class StatusArea;
} // namespace netvane::shell

namespace netvane::app {

class NotificationCenter;

/// Owns the program's item in the status area and its context menu. Main thread.
class StatusBarManager : public QObject {
    Q_OBJECT

public:
    /// All of them outlive the manager.
    StatusBarManager(NotificationCenter& notifications, const shell::StatusArea& statusArea,
        const platform::Appearance& appearance, base::Clock& clock);
    ~StatusBarManager() override;

    /// Makes the item. Its look does not depend on the link.
    void setup(wifi::WiFiService* wifiService);
    /// What a left click opens and closes; null while there is nothing to show. It outlives the
    /// manager or is taken away first.
    void setPopover(shell::PopoverWindow* popover) { m_popover = popover; }

    /// A left click.
    void togglePopover();
    void openInWindow();
    /// Ends the program, as the menu's "Quit Netvane" does.
    void quitApp();

    /// Whether a press there, in the coordinates of the desktop, is one on the item.
    bool isOnItem(const QPoint& position) const;
    /// To be called when a press that may have been one on the item closed the popover: the click
    /// that it begins must not open it again.
    void ignoreThisClick();

    /// Plain text; some desktops read markup in it.
    void setToolTip(const QString& text);
    QMenu& contextMenu() { return m_menu; }
    /// Null until the desktop has a status area.
    QSystemTrayIcon* statusItem() { return m_statusItem.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setupStatusItem();
    void showStatusItem();
    void makeMenu();
    void applyIcon();
    void handleActivated(QSystemTrayIcon::ActivationReason reason);
    std::optional<QRect> popoverAnchor() const;

    NotificationCenter& m_notifications;
    const shell::StatusArea& m_statusArea;
    const platform::Appearance& m_appearance;
    base::Clock& m_clock;
    wifi::WiFiService* m_wifiService = nullptr;
    shell::PopoverWindow* m_popover = nullptr;
    QMenu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_statusItem;
    QString m_toolTip = QStringLiteral("Netvane");
    std::optional<QPoint> m_lastClick; ///< of the pointer; many panels report no geometry
    std::unique_ptr<base::Timer> m_ignoring;
};

} // namespace netvane::app
