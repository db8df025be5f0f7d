#include "shell/popover_window.h"

#include "shell/popover_placement.h"
#include "shell/x11_selection.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

constexpr int kWidth = 420;
constexpr int kStartHeight = 600;
constexpr int kMaxHeight = 720; // of the column, and of the strip above it
constexpr int kRadius = 10;

QScreen* screenOf(const std::optional<QRect>& anchor)
{
    QScreen* screen = anchor ? QGuiApplication::screenAt(anchor->center()) : nullptr;
    return screen ? screen : QGuiApplication::primaryScreen();
}

} // namespace

PopoverWindow::PopoverWindow(MakeWindow make)
    : m_make(std::move(make))
{
}

PopoverWindow::~PopoverWindow()
{
    if (!m_host)
        return;
    window()->disconnect(this);
    m_host->disconnect(this);
}

void PopoverWindow::setUp()
{
    window()->setTitle(u"Netvane"_s);
    window()->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    m_host->addBackground(kRadius);
    connect(window(), &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            Q_EMIT didClose();
    });
    connect(m_host.get(), &HostWindow::preferredHeightChanged, this, &PopoverWindow::placeSoon);
    connect(m_host.get(), &HostWindow::cancelled, this, &PopoverWindow::performClose);
}

void PopoverWindow::show(const std::optional<QRect>& anchor)
{
    if (!m_host) {
        m_host = m_make();
        if (!m_host)
            return;
        setUp();
    }
    m_anchor = anchor;
    place();
    window()->show();
    window()->raise();
    window()->requestActivate();
}

void PopoverWindow::performClose()
{
    if (m_host)
        window()->hide();
}

void PopoverWindow::place()
{
    const QScreen* screen = screenOf(m_anchor);
    const QSize wanted(
        kWidth, std::min(m_host->preferredHeight().value_or(kStartHeight), kMaxHeight));
    const QRect frame
        = popoverFrame(wanted, m_anchor, screen->geometry(), screen->availableGeometry());
    // A window of one size only is not tiled over the screen by compositors that do so.
    window()->setMinimumSize(frame.size());
    window()->setMaximumSize(frame.size());
    window()->setGeometry(frame);
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
        outline.addRoundedRect(QRect(QPoint(), window()->size()), kRadius, kRadius);
    window()->setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

} // namespace netvane::shell
