#include "app/status_bar_manager.h"

#include "app/notification_center.h"
#include "base/log.h"
#include "shell/antenna_icon.h"
#include "shell/dark_scheme.h"
#include "shell/popover_window.h"
#include "shell/status_area.h"
#include "shell/x11_selection.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::app {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

constexpr int kItemHeight = 22;
constexpr int kItemReach = 24; ///< from a click on an item to its furthest point, about
constexpr std::chrono::milliseconds kClickDuration = 250ms;

QString frameText(const QRect& frame)
{
    const auto number = [](int value) { return QString::number(value, 'f', 1); };
    return u"(%1, %2, %3, %4)"_s.arg(
        number(frame.x()), number(frame.y()), number(frame.width()), number(frame.height()));
}

} // namespace

StatusBarManager::StatusBarManager(NotificationCenter& notifications,
    const shell::StatusArea& statusArea, const platform::Appearance& appearance, base::Clock& clock)
    : m_notifications(notifications)
    , m_statusArea(statusArea)
    , m_appearance(appearance)
    , m_clock(clock)
{
    makeMenu();
}

StatusBarManager::~StatusBarManager() = default;

void StatusBarManager::makeMenu()
{
    auto* open = m_menu.addAction(u"Open in Window"_s);
    open->setShortcut(QKeySequence(u"Ctrl+D"_s));
    connect(open, &QAction::triggered, this, &StatusBarManager::openInWindow);
    m_menu.addSeparator();
    auto* quit = m_menu.addAction(u"Quit Netvane"_s);
    quit->setShortcut(QKeySequence(u"Ctrl+Q"_s));
    connect(quit, &QAction::triggered, this, &StatusBarManager::quitApp);
}

void StatusBarManager::setup(wifi::WiFiService* wifiService)
{
    base::log(logCategory(), u"StatusBarManager: Setting up status bar item..."_s);
    m_wifiService = wifiService;
    setupStatusItem();
}

void StatusBarManager::setupStatusItem()
{
    qApp->installEventFilter(this);
    connect(&m_appearance, &platform::Appearance::colorSchemeChanged, this,
        &StatusBarManager::applyIcon);
    connect(&m_statusArea, &shell::StatusArea::changed, this, &StatusBarManager::showStatusItem);
    showStatusItem();
}

/// Once there is a place for it. From then on it comes back by itself with every panel.
void StatusBarManager::showStatusItem()
{
    if (m_statusItem || m_statusArea.state() != shell::StatusArea::State::Present)
        return;
    m_statusItem = std::make_unique<QSystemTrayIcon>();
    applyIcon();
    m_statusItem->setToolTip(m_toolTip);
    m_statusItem->setContextMenu(&m_menu);
    connect(
        m_statusItem.get(), &QSystemTrayIcon::activated, this, &StatusBarManager::handleActivated);
    m_statusItem->show();
    base::log(logCategory(), u"StatusBarManager: Status bar button created"_s);
    // Panels decide about size and place; many tell neither.
    const QRect frame(0, 0, std::max(m_statusItem->geometry().width(), kItemHeight), kItemHeight);
    base::log(logCategory(),
        u"StatusBarManager: Button action configured - frame: "_s + frameText(frame));
    base::log(
        logCategory(), u"StatusBarManager: Status bar item setup complete - should be visible"_s);
}

void StatusBarManager::setToolTip(const QString& text)
{
    m_toolTip = text;
    m_toolTip.replace(u'<', u'‹').replace(u'&', u'＆');
    if (m_statusItem)
        m_statusItem->setToolTip(m_toolTip);
}

bool StatusBarManager::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        applyIcon();
    return QObject::eventFilter(watched, event);
}

void StatusBarManager::applyIcon()
{
    if (m_statusItem)
        m_statusItem->setIcon(shell::antennaIcon(shell::isDarkWanted(m_appearance)));
}

/// A system tray calls the second of two fast clicks a double one. The context menu comes by
/// itself: from us in a tray, from the panel elsewhere.
void StatusBarManager::handleActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
        togglePopover();
}

void StatusBarManager::togglePopover()
{
    if (!m_statusItem || !m_popover || m_ignoring)
        return;
    m_lastClick = QCursor::pos();
    if (m_popover->isShown()) {
        m_popover->performClose();
        return;
    }
    m_popover->show(popoverAnchor());
    if (m_popover->isShown())
        Q_EMIT m_notifications.popoverDidOpen();
}

/// The item, else the pointer that clicked on it. Wayland reports neither.
std::optional<QRect> StatusBarManager::popoverAnchor() const
{
    const QRect item = m_statusItem->geometry();
    if (!item.isEmpty() && QGuiApplication::screenAt(item.center()))
        return item;
    if (shell::isX11() && QGuiApplication::screenAt(QCursor::pos()))
        return QRect(QCursor::pos(), QSize(0, 0));
    return std::nullopt;
}

bool StatusBarManager::isOnItem(const QPoint& position) const
{
    if (!m_statusItem)
        return false;
    const QRect item = m_statusItem->geometry();
    if (!item.isEmpty())
        return item.contains(position);
    return m_lastClick && (position - *m_lastClick).manhattanLength() <= kItemReach;
}

void StatusBarManager::ignoreThisClick()
{
    m_ignoring = m_clock.after(kClickDuration, [this] { m_ignoring.reset(); });
}

void StatusBarManager::openInWindow()
{
    Q_EMIT m_notifications.openInWindow();
}

void StatusBarManager::quitApp()
{
    QCoreApplication::quit();
}

} // namespace netvane::app
