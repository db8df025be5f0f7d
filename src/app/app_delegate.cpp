#include "app/app_delegate.h"

#include "app/notification_center.h"
#include "app/status_bar_manager.h"
#include "base/log.h"
#include "platform/application_activity.h"
#include "platform/platform.h"
#include "probes/network_utils.h"
#include "probes/ping_service.h"
#include "probes/probe_targets.h"
#include "shell/activation_token.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "verdict/verdict_service.h"
#include "wifi/location_permission_service.h"
#include "wifi/wifi_service.h"

#include <QAction>
#include <QDateTime>
#include <QFile>
#include <QGuiApplication>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::app {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

constexpr std::chrono::milliseconds kMemoryLogInterval = 30s;
/// A session that begins starts its panel and us in any order.
constexpr std::chrono::milliseconds kStatusAreaLimit = 3s;
const QString kWayBack
    = u"This desktop has no status area. Netvane keeps running after you close this window. "
      "To open the window again, start Netvane again. To end Netvane, use Quit in its settings."_s;
const ViewWindow::Look kVerdictLook {u"What is wrong?"_s, {600, 720}, {440, 360}};
const ViewWindow::Look kTimeLineLook {u"Time line"_s, {980, 760}, {600, 560}};
const ViewWindow::Look kAirLook {u"The air"_s, {900, 760}, {640, 420}};
constexpr double kBytesPerMebibyte = 1024.0 * 1024.0;

/// The resident set of this process, the second field of /proc/self/statm (proc(5)); absent if it
/// cannot be read.
std::optional<double> residentMebibytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    bool isNumber = false;
    const auto pages = file.read(256).split(' ').value(1).toULongLong(&isNumber);
    const double bytes = double(pages) * double(::sysconf(_SC_PAGESIZE));
    return isNumber ? std::optional(bytes / kBytesPerMebibyte) : std::nullopt;
}

} // namespace

AppDelegate::AppDelegate(platform::Platform& platform, platform::ApplicationActivity& activity,
    NotificationCenter& notifications, MakeViews makeViews)
    : m_platform(platform)
    , m_activity(activity)
    , m_notifications(notifications)
    , m_makeViews(std::move(makeViews))
    , m_services(platform)
    , m_statusArea(*platform.statusNotifierHost)
{
    base::log(
        logCategory(), u"AppDelegate: init() called - Sparkle updater initialized and started"_s);
    connect(&m_notifications, &NotificationCenter::openInWindow, this,
        &AppDelegate::handleOpenInWindow);
    connect(&m_notifications, &NotificationCenter::explainVerdict, this,
        &AppDelegate::openVerdictWindow);
    connect(&m_notifications, &NotificationCenter::showTimeLine, this, &AppDelegate::openTimeLine);
    connect(&m_notifications, &NotificationCenter::showAir, this, &AppDelegate::openAir);
    connect(&m_notifications, &NotificationCenter::popoverDidOpen, this,
        &AppDelegate::popoverDidOpenNotification);
    connect(&m_statusArea, &shell::StatusArea::changed, this, &AppDelegate::noteWayBack);
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationWillFinishLaunching()
{
    base::log(logCategory(), u"AppDelegate: applicationWillFinishLaunching called"_s);
}

void AppDelegate::applicationDidFinishLaunching()
{
    base::log(logCategory(), u"Netvane: Application launching..."_s);
    // Nothing in the task bar, and no window whose closing would end the program.
    base::log(logCategory(), u"Netvane: Activation policy set to accessory"_s);
    base::log(logCategory(), u"Netvane: App activated"_s);
    m_services.makeAll(m_activity);
    setupStatusBar();
    setupMainMenu();
    m_services.networkUtils->followDefaultGateway(*m_platform.routeMonitor, this,
        [this](const std::optional<QString>& address) { gatewayAnswered(address); });
    base::log(logCategory(), u"Netvane: Application launched successfully"_s);
    m_memoryTimer = m_platform.clock->repeat(kMemoryLogInterval, [this] { logMemoryUsage(); });
}

/// What was read before is old. A probe that was under way when the machine fell asleep tells
/// nothing, which the services see to themselves.
void AppDelegate::sampleAfterSleep()
{
    if (m_isTerminated || !m_popover) // not all of them run
        return;
    base::log(logCategory(), u"Netvane: Awake after a sleep, reading everything anew"_s);
    m_services.readAnew();
}

void AppDelegate::setupStatusBar()
{
    m_statusBarManager = std::make_unique<StatusBarManager>(
        m_notifications, m_statusArea, *m_platform.appearance, *m_platform.clock);
    m_statusBarManager->setup(wifiService());
    connect(m_services.verdictService.get(), &verdict::VerdictService::verdictChanged, this,
        &AppDelegate::publishVerdict);
    base::log(logCategory(), u"Netvane: Status bar setup complete"_s);
}

void AppDelegate::publishVerdict()
{
    const auto& verdict = m_services.verdictService->verdict();
    m_statusBarManager->setToolTip(verdict.sentence);
    QStringList evidence;
    for (const auto& item : verdict.evidence)
        evidence.append(item.text);
    const auto since = std::chrono::floor<std::chrono::seconds>(verdict.since).time_since_epoch();
    m_platform.verdictOutlet->publish({
        .verdict = verdict.sentence,
        .cause = identifier(verdict.cause),
        .segment = identifier(segmentOf(verdict.cause)),
        .severity = identifier(verdict.severity),
        .since = QDateTime::fromSecsSinceEpoch(since.count(), Qt::UTC).toString(Qt::ISODate),
        .evidence = evidence.join(u'\n'),
    });
}

/// Works in every window of the program that is the active one.
void AppDelegate::setupMainMenu()
{
    m_mainMenu = std::make_unique<QMenu>(u"Window"_s);
    auto* open = m_mainMenu->addAction(u"Open in Window"_s);
    open->setShortcut(QKeySequence(u"Ctrl+D"_s));
    connect(open, &QAction::triggered, this, &AppDelegate::handleOpenInWindow);
    base::log(logCategory(), u"Netvane: Global keyboard shortcut ⌘D configured"_s);
    auto* timeLine = m_mainMenu->addAction(u"Time Line"_s);
    timeLine->setShortcut(QKeySequence(u"Ctrl+T"_s));
    connect(timeLine, &QAction::triggered, this, &AppDelegate::openTimeLine);
    auto* air = m_mainMenu->addAction(u"The Air"_s);
    air->setShortcut(QKeySequence(u"Ctrl+E"_s));
    connect(air, &QAction::triggered, this, &AppDelegate::openAir);
}

/// The first answer makes the probes; a later one that is another address leads the router's probe
/// there. Without a route it keeps its target.
void AppDelegate::gatewayAnswered(const std::optional<QString>& address)
{
    auto* const probe = routerPingService();
    const QString router = address.value_or(probe ? probe->targetHost() : probes::kFallbackGateway);
    if (probe && probe->targetHost() == router)
        return;
    base::log(logCategory(), u"Netvane: Default gateway: "_s + router);
    if (probe) {
        probe->setTargetHost(router);
        return;
    }
    m_services.makeProbes(router);
    QMetaObject::invokeMethod(this, &AppDelegate::startServices, Qt::QueuedConnection);
}

void AppDelegate::startServices()
{
    // The end of the program may have come before the gateway's answer.
    if (m_isTerminated)
        return;
    m_services.start();
    setupPopover();
    connect(m_platform.sleepMonitor.get(), &platform::SleepMonitor::didWake, this,
        &AppDelegate::sampleAfterSleep);
    // A reading of the routes that failed is made up for.
    connect(m_platform.sleepMonitor.get(), &platform::SleepMonitor::didWake,
        m_platform.routeMonitor.get(), &platform::RouteMonitor::routesChanged);
    base::log(logCategory(), u"Netvane: All services started"_s);
    perform(std::exchange(m_pendingAction, {}));
    m_statusAreaTimer = m_platform.clock->after(kStatusAreaLimit, [this] { followStatusArea(); });
}

DashboardViews* AppDelegate::views()
{
    if (!m_views)
        m_views = m_makeViews(m_services, *m_mainMenu, m_notifications);
    return m_views.get();
}

void AppDelegate::setupPopover()
{
    m_popover = std::make_unique<shell::PopoverWindow>(
        [this] { return views() ? views()->popoverWindow() : nullptr; });
    connect(m_popover.get(), &shell::PopoverWindow::didClose, this, &AppDelegate::popoverDidClose);
    m_statusBarManager->setPopover(m_popover.get());
}

void AppDelegate::popoverDidOpenNotification()
{
    removePopoverMonitor();
    m_popoverMonitor = shell::OutsideClickMonitor::create(*m_popover->window(),
        [this](const std::optional<QPoint>& position) { handlePress(position); });
}

/// Presses on the status item are its own business, those beside a dialog of ours are the dialog's.
void AppDelegate::handlePress(const std::optional<QPoint>& position)
{
    if (!m_popover->isShown() || QGuiApplication::modalWindow())
        return;
    if (position
        && (m_popover->window()->frameGeometry().contains(*position)
            || m_statusBarManager->isOnItem(*position)))
        return;
    m_statusBarManager->ignoreThisClick();
    QMetaObject::invokeMethod(
        this,
        [this] {
            removePopoverMonitor();
            m_popover->performClose();
        },
        Qt::QueuedConnection);
}

/// A request that comes before the services exist which the window shows is dropped.
void AppDelegate::openDetailedWindow()
{
    if (!m_popover)
        return;
    m_popover->performClose();
    if (m_windowController && m_windowController->isWindowVisible()) {
        m_windowController->bringToFront();
        return;
    }
    if (!views())
        return;
    m_windowController = std::make_unique<shell::DetailedWindowController>(
        views()->detailedWindow(), *m_platform.userDefaults, *m_platform.clock);
    noteWayBack();
    m_windowController->showWindow();
}

/// As with the detailed window.
void AppDelegate::openViewWindow(std::unique_ptr<ViewWindow>& place,
    std::unique_ptr<shell::HostWindow> (DashboardViews::*make)(), const ViewWindow::Look& look)
{
    if (!m_popover)
        return;
    m_popover->performClose();
    if (!place) {
        if (!views())
            return;
        place = std::make_unique<ViewWindow>((views()->*make)(), look);
        // Not at once: the view itself may have been what closed the window.
        connect(
            place.get(), &ViewWindow::closed, this, [&place] { place.reset(); },
            Qt::QueuedConnection);
    }
    place->show();
}

void AppDelegate::openVerdictWindow()
{
    openViewWindow(m_verdictWindow, &DashboardViews::verdictWindow, kVerdictLook);
}

void AppDelegate::openTimeLine()
{
    openViewWindow(m_timeLineWindow, &DashboardViews::timeLineWindow, kTimeLineLook);
}

void AppDelegate::openAir()
{
    openViewWindow(m_airWindow, &DashboardViews::airWindow, kAirLook);
}

void AppDelegate::perform(const QString& action)
{
    const bool isAir = action == platform::kAirAction;
    if ((!isAir && action != platform::kTimeLineAction) || m_isTerminated)
        return;
    if (!m_popover)
        m_pendingAction = action;
    else if (isAir)
        openAir();
    else
        openTimeLine();
}

/// Closing the window leaves nothing to be seen of a program that has no item.
void AppDelegate::noteWayBack()
{
    const bool hasItem = m_statusArea.state() == shell::StatusArea::State::Present;
    if (m_windowController)
        m_windowController->setNote(hasItem ? QString() : kWayBack);
}

/// Without a status area the window is the only way to the program. An item appears in any that
/// comes later.
void AppDelegate::followStatusArea()
{
    m_statusAreaTimer.reset();
    if (m_statusArea.state() == shell::StatusArea::State::Present)
        return;
    base::log(logCategory(), u"ERROR: Failed to create status bar button"_s);
    base::log(logCategory(),
        u"Netvane: This desktop has no status area, so the window opens instead; "
        "start Netvane again to open it again"_s);
    openDetailedWindow();
}

void AppDelegate::applicationStartedAgain(const platform::StartRequest& request)
{
    const bool hasItem = m_statusArea.state() == shell::StatusArea::State::Present;
    if (m_isTerminated || (hasItem && request.action.isEmpty()))
        return;
    shell::useActivationToken(request.activationToken);
    if (request.action.isEmpty())
        openDetailedWindow();
    else
        perform(request.action);
}

void AppDelegate::applicationDidBecomeActive()
{
    base::log(logCategory(), u"Netvane: App became active - checking location permission"_s);
    if (auto* permission = locationPermissionService())
        permission->checkAuthorizationStatus();
    if (auto* wifi = wifiService())
        wifi->updateWiFiInfo();
}

void AppDelegate::applicationWillTerminate()
{
    if (std::exchange(m_isTerminated, true))
        return;
    m_statusAreaTimer.reset();
    m_services.stop();
}

bool AppDelegate::applicationShouldHandleReopen(bool)
{
    return false;
}

void AppDelegate::logMemoryUsage() const
{
    if (const auto mebibytes = residentMebibytes())
        base::log(logCategory(), u"Memory: %1 MB"_s.arg(*mebibytes, 0, 'f', 1));
}

} // namespace netvane::app
