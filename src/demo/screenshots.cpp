#include "demo/screenshots.h"

#include "app/status_bar_manager.h"
#include "app/view_window.h"
#include "demo/staged_program.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "ui/timeline/time_line_state.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QPainter>
#include <QQuickItem>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

/// Until each history holds as much as it can.
constexpr std::chrono::milliseconds kFullHistory = 115s;
constexpr std::chrono::milliseconds kVerdictTime = 40s;
constexpr std::chrono::milliseconds kTraceTime = 45s;
constexpr std::chrono::milliseconds kAnimationTime = 400ms; ///< real time
constexpr int kMargin = 16;
constexpr double kCornerRadius = 10; ///< of the popover

struct Picture {
    QString name;
    QString scene;
    /// Shows the content; returns its window.
    std::function<QWindow*(StagedProgram&)> show;
};

QWindow* popover(StagedProgram& program)
{
    return &program.openPopover(kFullHistory);
}

QWindow* settings(StagedProgram& program)
{
    auto* window = popover(program);
    stateOf<ui::PopoverState>(*window).setShowSettings(true);
    program.pass(1s);
    return window;
}

std::function<QWindow*(StagedProgram&)> introduction(int page)
{
    return [page](StagedProgram& program) {
        auto* window = popover(program);
        for (int passed = 0; passed < page; ++passed)
            stateOf<ui::PopoverState>(*window).onboarding()->goOn();
        program.pass(1s);
        return window;
    };
}

/// The window that explains the verdict.
QWindow* verdict(StagedProgram& program)
{
    auto& popover = program.openPopover(kVerdictTime);
    stateOf<ui::PopoverState>(popover).verdict()->explain();
    program.pass(1s);
    return &program.delegate().verdictWindow()->window();
}

/// The time line's window with one of its pages, and the range of this index.
std::function<QWindow*(StagedProgram&)> timeLine(int page, int range)
{
    return [page, range](StagedProgram& program) {
        program.delegate().mainMenu()->actions().at(1)->trigger();
        program.pass(1s);
        auto& window = program.delegate().timeLineWindow()->window();
        windows::rootOf(window).setProperty("page", page);
        stateOf<ui::TimeLineState>(window).show(range);
        program.pass(1s);
        stateOf<ui::TimeLineState>(window).pointTo(0.8);
        program.pass(1s);
        return &window;
    };
}

/// The window about the air with one of its pages.
std::function<QWindow*(StagedProgram&)> air(int page)
{
    return [page](StagedProgram& program) {
        program.delegate().mainMenu()->actions().constLast()->trigger();
        program.pass(1s);
        auto& window = program.delegate().airWindow()->window();
        windows::rootOf(window).setProperty("page", page);
        program.pass(30s);
        return &window;
    };
}

/// The top of the popover: its strip, and the network below that.
QWindow* strip(StagedProgram& program)
{
    auto* window = &program.openPopover(kVerdictTime);
    const auto& root = windows::rootOf(*window);
    const auto* strip = root.findChild<QQuickItem*>(u"verdict"_s);
    const auto* network = root.findChild<QQuickItem*>(u"network-info"_s);
    const QSize size(
        window->width(), int(strip->y() + strip->height() + network->height()) + 2 * kMargin);
    window->setMinimumSize(size);
    window->resize(size);
    QCoreApplication::processEvents();
    return window;
}

QWindow* detailedWindow(StagedProgram& program)
{
    return &program.openDetailedWindow(kFullHistory);
}

/// Makes the window as high as these sections of its dashboard and shows nothing else.
void frameSections(QWindow& window, const QString& from, const QString& to)
{
    auto& root = windows::rootOf(window);
    const auto* first = root.findChild<QQuickItem*>(from);
    const auto* last = root.findChild<QQuickItem*>(to);
    window.resize(window.width(), int(last->y() + last->height() - first->y()) + 2 * kMargin);
    QCoreApplication::processEvents();
    QMetaObject::invokeMethod(
        root.findChild<QQuickItem*>(u"main-content"_s), "scrollTo", Q_ARG(qreal, first->y()));
}

/// Without the lookups: they take real time, so their graph differs each time.
QWindow* performance(StagedProgram& program)
{
    auto* window = detailedWindow(program);
    frameSections(*window, u"performance"_s, u"connection-summary"_s);
    return window;
}

/// The sections that the user starts, after their end.
QWindow* diagnostics(StagedProgram& program)
{
    auto* window = detailedWindow(program);
    auto& dashboard = stateOf<ui::DetailedWindowState>(*window);
    dashboard.channelAnalysis()->scan();
    dashboard.speedTest()->runTest();
    dashboard.traceroute()->run();
    program.pass(kTraceTime);
    frameSections(*window, u"channel-analysis"_s, u"traceroute"_s);
    return window;
}

std::vector<Picture> pictures()
{
    std::vector<Picture> all
        = {{u"dashboard"_s, u"home"_s, popover}, {u"weak-link"_s, u"weak"_s, popover},
            {u"captive-portal"_s, u"cafe"_s, popover}, {u"wifi-off"_s, u"off"_s, popover},
            {u"permission"_s, u"permission"_s, popover}, {u"settings"_s, u"home"_s, settings},
            {u"introduction-1"_s, u"first-start"_s, introduction(0)},
            {u"introduction-2"_s, u"first-start"_s, introduction(1)},
            {u"introduction-3"_s, u"first-start"_s, introduction(2)},
            {u"window"_s, u"office"_s, detailedWindow}, {u"performance"_s, u"home"_s, performance},
            {u"diagnostics"_s, u"home"_s, diagnostics},
            {u"time-line-hour"_s, u"home"_s, timeLine(0, 1)},
            {u"time-line-day"_s, u"home"_s, timeLine(0, 2)},
            {u"time-line-month"_s, u"home"_s, timeLine(0, 4)},
            {u"time-line-hours"_s, u"home"_s, timeLine(1, 4)},
            {u"time-line-outages"_s, u"home"_s, timeLine(2, 4)},
            {u"air-channels"_s, u"home"_s, air(0)}, {u"air-networks"_s, u"home"_s, air(1)},
            {u"air-link"_s, u"home"_s, air(2)}, {u"air-roaming"_s, u"weak"_s, air(3)}};
    const std::pair<QString, QString> causes[] = {{u"healthy"_s, u"home"_s},
        {u"weak-signal"_s, u"weak"_s}, {u"router-dead"_s, u"router-dead"_s},
        {u"line-down"_s, u"line-down"_s}, {u"dns-dead"_s, u"dns-dead"_s}, {u"portal"_s, u"cafe"_s}};
    for (const auto& [cause, scene] : causes) {
        all.push_back({u"strip-"_s + cause, scene, strip});
        all.push_back({u"verdict-"_s + cause, scene, verdict});
    }
    return all;
}

/// The transparent parts of a window without a background are drawn black; this makes them
/// transparent again.
QImage pictureOf(QQuickWindow& window)
{
    QImage whole = window.grabWindow();
    if (window.color().alpha() > 0)
        return whole;
    QImage rounded(whole.size(), QImage::Format_ARGB32);
    rounded.fill(Qt::transparent);
    QPainter painter(&rounded);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(whole);
    const double radius = kCornerRadius * whole.devicePixelRatio();
    painter.drawRoundedRect(whole.rect(), radius, radius);
    return rounded;
}

bool draw(QApplication& application, const Picture& wanted, const QDir& folder)
{
    StagedProgram program(application, {.held = wanted.scene, .hasStatusArea = true});
    auto* window = wanted.show(program);
    const QDeadlineTimer animated(kAnimationTime);
    while (!animated.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    bool isWritten = true;
    const auto write = [&](platform::ColorScheme scheme, const QString& suffix) {
        program.stage().parts.appearance.setColorScheme(scheme);
        program.pass(1s);
        constexpr int kSmallest = 0; // as QImage counts
        isWritten &= pictureOf(*windows::rootOf(*window).window())
                         .save(folder.filePath(wanted.name + suffix), "PNG", kSmallest);
    };
    write(platform::ColorScheme::Light, u"-light.png"_s);
    write(platform::ColorScheme::Dark, u"-dark.png"_s);
    return isWritten;
}

} // namespace

bool drawScreenshots(QApplication& application, const QString& folder)
{
    const QDir place(folder);
    if (!place.mkpath(u"."_s))
        return false;
    for (const auto& picture : pictures()) {
        if (!draw(application, picture, place))
            return false;
    }
    return true;
}

} // namespace netvane::demo
