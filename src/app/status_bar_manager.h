#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>

namespace netvane::wifi {
class WiFiService;
}

namespace netvane::app {

class NotificationCenter;

/// Owns the program's item in the status area and its context menu. Main thread.
class StatusBarManager : public QObject {
    Q_OBJECT

public:
    explicit StatusBarManager(NotificationCenter& notifications);
    ~StatusBarManager() override;

    /// Makes the item. Its look does not depend on the link.
    void setup(wifi::WiFiService* wifiService);
    /// Ends the program, as the menu's "Quit Netvane" does.
    void quitApp();

    QMenu& contextMenu() { return m_menu; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setupStatusItem();
    void applyIcon();

    NotificationCenter& m_notifications;
    wifi::WiFiService* m_wifiService = nullptr;
    QMenu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_statusItem;
};

} // namespace netvane::app
