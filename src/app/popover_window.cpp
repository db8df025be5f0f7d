#include "app/popover_window.h"

#include "app/popover_placement.h"
#include "app/x11_selection.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QQmlComponent>
#include <QQuickItem>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

constexpr int kWidth = 420;
constexpr int kStartHeight = 600;
constexpr int kMaxHeight = 650;
constexpr int kRadius = 10;

QScreen* screenOf(const std::optional<QRect>& anchor)
{
    QScreen* screen = anchor ? QGuiApplication::screenAt(anchor->center()) : nullptr;
    return screen ? screen : QGuiApplication::primaryScreen();
}

} // namespace

PopoverWindow::PopoverWindow(ViewHost& host, MakeView makeView)
    : m_host(host)
    , m_makeView(std::move(makeView))
{
}

PopoverWindow::~PopoverWindow()
{
    if (m_window)
        m_window->disconnect(this);
}

void PopoverWindow::makeWindow()
{
    m_window = m_host.makeWindow(m_makeView());
    m_window->setTitle(u"Netvane"_s);
    m_window->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    m_window->setColor(Qt::transparent);
    QQmlComponent frame(m_window->engine(), QUrl(u"qrc:/qt/qml/Netvane/PopoverFrame.qml"_s));
    QObject* ground = frame.createWithInitialProperties(
        {{u"parent"_s, QVariant::fromValue(m_window->contentItem())}, {u"radius"_s, kRadius}});
    ground->setParent(m_window.get());
    connect(m_window.get(), &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            Q_EMIT didClose();
    });
    connect(m_window.get(), &HostWindow::preferredHeightChanged, this, &PopoverWindow::placeSoon);
    connect(m_window.get(), &HostWindow::cancelled, this, &PopoverWindow::performClose);
}

void PopoverWindow::show(const std::optional<QRect>& anchor)
{
    if (!m_window)
        makeWindow();
    m_anchor = anchor;
    place();
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

void PopoverWindow::performClose()
{
    if (m_window)
        m_window->hide();
}

void PopoverWindow::place()
{
    const QScreen* screen = screenOf(m_anchor);
    const QSize wanted(
        kWidth, std::min(m_window->preferredHeight().value_or(kStartHeight), kMaxHeight));
    const QRect frame
        = popoverFrame(wanted, m_anchor, screen->geometry(), screen->availableGeometry());
    // A window of one size only is not tiled over the screen by compositors that do so.
    m_window->setMinimumSize(frame.size());
    m_window->setMaximumSize(frame.size());
    m_window->setGeometry(frame);
    roundCorners();
}

/// A layout that settles asks for several heights in a row.
void PopoverWindow::placeSoon()
{
    if (!isShown() || std::exchange(m_isPlacingDue, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isPlacingDue = false;
            place();
        },
        Qt::QueuedConnection);
}

/// Where nothing composes the screen, transparent corners are black, so they are cut off.
void PopoverWindow::roundCorners()
{
    if (!isX11())
        return;
    QPainterPath outline;
    if (!isX11SelectionHeld("_NET_WM_CM_S"))
        outline.addRoundedRect(QRect(QPoint(), m_window->size()), kRadius, kRadius);
    m_window->setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

} // namespace netvane::app
