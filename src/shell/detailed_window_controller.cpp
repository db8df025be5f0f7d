#include "shell/detailed_window_controller.h"

#include "shell/window_frame.h"

#include <QGuiApplication>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::shell {
namespace {

constexpr QSize kSize(600, 800);
constexpr QSize kMinimumSize(400, 600);
constexpr std::chrono::milliseconds kStoreDelay = 1s; // moving a window is many small moves
const QString kFrameKey = u"NetvaneWindow"_s;

QRect centredFrame(const QRect& area)
{
    QRect frame(QPoint(), kSize.boundedTo(area.size()));
    frame.moveCenter(area.center());
    return frame;
}

} // namespace

DetailedWindowController::DetailedWindowController(
    std::unique_ptr<HostWindow> host, platform::UserDefaults& defaults, base::Clock& clock)
    : m_defaults(defaults)
    , m_clock(clock)
    , m_host(std::move(host))
{
    window().setTitle(u"Netvane"_s);
    window().installEventFilter(this);
    for (const auto change :
        {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged, &QWindow::heightChanged})
        connect(&window(), change, this, &DetailedWindowController::noteFrame);
    connect(&window(), &QWindow::visibleChanged, this, &DetailedWindowController::handleVisible);
}

DetailedWindowController::~DetailedWindowController()
{
    window().disconnect(this);
}

void DetailedWindowController::showWindow()
{
    std::optional<QRect> stored;
    if (const auto text = m_defaults.text(kFrameKey))
        stored = windowFrame(*text);
    fitFrame(stored.value_or(QRect()), kUsualMargins);
    window().show();
    bringToFront();
}

void DetailedWindowController::bringToFront()
{
    m_host->bringToFront();
}

bool DetailedWindowController::eventFilter(QObject* watched, QEvent* event)
{
    // The first time on the screen, the window manager has given it its frame.
    if (event->type() == QEvent::Expose && window().isExposed()
        && window().windowStates() == Qt::WindowNoState && !std::exchange(m_isFitted, true))
        fitFrame({window().framePosition(), window().size()}, window().frameMargins());
    return QObject::eventFilter(watched, event);
}

/// At `wanted` as far as the screens have room, else in the middle of the main one.
void DetailedWindowController::fitFrame(const QRect& wanted, const QMargins& margins)
{
    QList<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.append(frameArea(*screen, margins));
    const QRect frame
        = restoredFrame(wanted, kMinimumSize, areas)
              .value_or(centredFrame(frameArea(*QGuiApplication::primaryScreen(), margins)));
    window().setMinimumSize(kMinimumSize.boundedTo(frame.size()));
    if (frame == wanted && window().isVisible())
        return;
    window().resize(frame.size());
    window().setFramePosition(frame.topLeft());
}

void DetailedWindowController::noteFrame()
{
    // A size that the window system gave for a while is not the user's choice.
    if (!window().isVisible() || window().windowStates() != Qt::WindowNoState)
        return;
    m_frame = {window().framePosition(), window().size()};
    m_storing = m_clock.after(kStoreDelay, [this] { storeFrame(); });
}

void DetailedWindowController::storeFrame()
{
    m_storing.reset();
    if (!m_frame.isNull())
        m_defaults.setText(kFrameKey, windowFrameText(m_frame));
}

void DetailedWindowController::handleVisible(bool isVisible)
{
    if (isVisible)
        return;
    storeFrame();
    // Not at once: the view itself may have been what closed the window.
    QMetaObject::invokeMethod(m_host.get(), &HostWindow::releaseView, Qt::QueuedConnection);
}

} // namespace netvane::shell
