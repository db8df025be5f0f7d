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

QList<QRect> workAreas()
{
    QList<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.append(screen->availableGeometry());
    return areas;
}

QRect centredFrame()
{
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    QRect frame(QPoint(), kSize.boundedTo(area.size()).expandedTo(kMinimumSize));
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
    window().setMinimumSize(kMinimumSize);
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
    restoreFrame();
    window().show();
    bringToFront();
}

void DetailedWindowController::bringToFront()
{
    window().setWindowStates(window().windowStates() & ~Qt::WindowMinimized);
    window().raise();
    window().requestActivate();
}

void DetailedWindowController::restoreFrame()
{
    std::optional<QRect> frame;
    if (const auto text = m_defaults.text(kFrameKey))
        frame = windowFrame(*text);
    if (frame)
        frame = restoredFrame(*frame, kMinimumSize, workAreas());
    const QRect wanted = frame.value_or(centredFrame());
    window().resize(wanted.size());
    window().setFramePosition(wanted.topLeft());
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
