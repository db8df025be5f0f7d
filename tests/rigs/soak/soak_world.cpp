#include "soak_world.h"

#include "bus/bus_link.h"
#include "demo/script.h"
#include "desktop/freedesktop_notifications.h"
#include "desktop/portal_appearance.h"
#include "desktop/session_status_notifier_host.h"
#include "desktop/settings_file.h"
#include "probes/dns_service.h"
#include "radio/scan_permission.h"
#include "windows/quick_views.h"

#include <QDeadlineTimer>
#include <QThread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::soak {
namespace {

constexpr std::chrono::milliseconds kRealLimit = 10s;

/// Out of reach of everything, with the radio on.
demo::Scene lost()
{
    demo::Scene scene = demo::scenes().front();
    scene.name = u"lost"_s;
    scene.title = u"out of reach"_s;
    scene.link = {.interfaceName = u"wlan0"_s};
    scene.signalDbm = {};
    scene.noiseDbm = {};
    scene.rateMbps = {};
    scene.routerTimes = {};
    scene.internetTimes = {};
    scene.lookupTime.reset();
    return scene;
}

/// Look-ups take real time in the demonstration; here only their threads are wanted.
std::vector<demo::Scene> scenes()
{
    auto all = demo::scenes();
    all.push_back(lost());
    for (auto& scene : all) {
        if (scene.lookupTime)
            scene.lookupTime = 0us;
    }
    return all;
}

} // namespace

SoakWorld::SoakWorld(QApplication& application)
{
    for (const char* bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(bus, m_desktop.address().toUtf8());
    if (!m_folder.isValid() || !m_desktop.start())
        qFatal("no temporary folder or no bus");
    m_program
        = std::make_unique<app::Program>(application, makePlatform(), &windows::makeQuickViews);
    m_program->start();
    // The program gives the desktop three seconds, which here are none.
    if (!until([this] { return m_panel->isPresent() == true; }))
        qFatal("no answer on the bus");
    pass(5s);
}

SoakWorld::~SoakWorld()
{
    delegate().applicationWillTerminate();
    settle();
    m_program.reset();
}

platform::Platform SoakWorld::makePlatform()
{
    auto clock = std::make_unique<simulated::ManualClock>();
    m_clock = clock.get();
    auto scripted = demo::makeScriptedPlatform(
        std::move(clock), {.scenes = scenes(), .held = u"home"_s, .hasStatusArea = true});
    m_stage = scripted.stage;
    m_lookups = scripted.lookups;
    auto& platform = scripted.platform;
    m_queues = platform.queues.get();
    const auto linkTo = [this](QDBusConnection::BusType bus) {
        return std::make_unique<bus::BusLink>(bus, *m_clock, m_queues->userInitiated);
    };
    auto systemBus = linkTo(QDBusConnection::SystemBus);
    auto sessionBus = linkTo(QDBusConnection::SessionBus);
    platform.locationManager = std::make_unique<radio::ScanPermission>(*systemBus);
    platform.appearance = std::make_unique<desktop::PortalAppearance>(*sessionBus);
    platform.statusNotifierHost = std::make_unique<desktop::SessionStatusNotifierHost>(*sessionBus);
    platform.userNotifications = std::make_unique<desktop::FreedesktopNotifications>(*sessionBus);
    auto settings = std::make_unique<desktop::SettingsFile>(m_folder.filePath(u"settings.json"_s));
    settings->setBoolean(u"netvane.onboarding.completed"_s, true);
    platform.userDefaults = std::move(settings);
    platform.wifiClient = std::make_shared<SoakRadio>(platform.wifiClient, m_fate);
    platform.networkScanner = std::make_unique<CrowdedScanner>(m_stage, m_fate);
    platform.systemBus = std::move(systemBus);
    platform.sessionBus = std::move(sessionBus);
    m_defaults = platform.userDefaults.get();
    m_sleepMonitor = platform.sleepMonitor.get();
    m_appearance = platform.appearance.get();
    m_panel = platform.statusNotifierHost.get();
    return std::move(platform);
}

void SoakWorld::pass(std::chrono::milliseconds time, std::chrono::milliseconds step)
{
    for (auto left = time; left > 0ms; left -= step) {
        m_clock->advance(std::min(left, step));
        settle();
    }
    m_told.take(m_log.take());
}

void SoakWorld::settle()
{
    for (int round = 0; round < 3; ++round) {
        m_queues->userInitiated.waitForDone();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        // Outside of an event loop Qt leaves these for when one begins.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    const auto* dns = delegate().dnsService();
    QDeadlineTimer deadline(kRealLimit);
    while (dns && m_lookups->ended < dns->lookupCount() && !deadline.hasExpired())
        QThread::yieldCurrentThread();
}

bool SoakWorld::until(const std::function<bool()>& isReached)
{
    QDeadlineTimer deadline(kRealLimit);
    while (!isReached() && !deadline.hasExpired()) {
        QThread::msleep(1);
        settle();
    }
    return isReached();
}

void SoakWorld::sleep(std::chrono::milliseconds time)
{
    m_clock->sleep(time);
    Q_EMIT m_sleepMonitor->didWake();
    settle();
}

qint64 SoakWorld::settingsFiles() const
{
    return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size();
}

Usage SoakWorld::settledUsage()
{
    m_queues->utility.waitForDone();
    // Threads of look-ups end a moment after their answer.
    for (int round = 0; round < 20; ++round) {
        QThread::msleep(10);
        settle();
    }
    return usageNow();
}

} // namespace netvane::soak
