#include "app/status_bar_manager.h"

#include "app/antenna_icon.h"
#include "app/notification_center.h"
#include "platform/log.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

constexpr int kItemHeight = 22;

QString frameText(const QRect& frame)
{
    const auto number = [](int value) { return QString::number(value, 'f', 1); };
    return u"(%1, %2, %3, %4)"_s.arg(
        number(frame.x()), number(frame.y()), number(frame.width()), number(frame.height()));
}

} // namespace

StatusBarManager::StatusBarManager(NotificationCenter& notifications)
    : m_notifications(notifications)
{
    auto* quit = m_menu.addAction(u"Quit Netvane"_s);
    quit->setShortcut(QKeySequence(u"Ctrl+Q"_s));
    connect(quit, &QAction::triggered, this, &StatusBarManager::quitApp);
}

StatusBarManager::~StatusBarManager() = default;

void StatusBarManager::setup(wifi::WiFiService* wifiService)
{
    platform::log(u"StatusBarManager: Setting up status bar item..."_s);
    m_wifiService = wifiService;
    setupStatusItem();
}

void StatusBarManager::setupStatusItem()
{
    m_statusItem = std::make_unique<QSystemTrayIcon>();
    platform::log(u"StatusBarManager: Status bar button created"_s);
    applyIcon();
    m_statusItem->setToolTip(u"Netvane"_s);
    m_statusItem->setContextMenu(&m_menu);
    m_statusItem->show();
    // Panels decide about size and place; many tell neither.
    const QRect frame(0, 0, std::max(m_statusItem->geometry().width(), kItemHeight), kItemHeight);
    platform::log(u"StatusBarManager: Button action configured - frame: "_s + frameText(frame));
    qApp->installEventFilter(this);
    platform::log(u"StatusBarManager: Status bar item setup complete - should be visible"_s);
}

bool StatusBarManager::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        applyIcon();
    return QObject::eventFilter(watched, event);
}

void StatusBarManager::applyIcon()
{
    m_statusItem->setIcon(antennaIcon(QApplication::palette().color(QPalette::WindowText)));
}

void StatusBarManager::quitApp()
{
    QCoreApplication::quit();
}

} // namespace netvane::app
