#include "soak_world.h"

#include "bus/bus_link.h"
#include "demo/script.h"
#include "desktop/freedesktop_notifications.h"
#include "desktop/portal_appearance.h"
#include "desktop/session_status_notifier_host.h"
#include "desktop/settings_file.h"
#include "radio/scan_permission.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::soak {
namespace {

constexpr std::chrono::milliseconds kRealLimit = 10s;
constexpr std::chrono::milliseconds kScanTime = 3s;
constexpr int kFewestNetworks = 200;
constexpr int kMostNetworks = 1000;

/// Those of the demonstration, with look-ups that end at once, and a place without any network.
std::vector<demo::Scene> scenes()
{
    auto all = demo::scenes();
    for (auto& scene : all) {
        if (scene.lookupTime)
            scene.lookupTime = 0us;
    }
    all.push_back({.name = u"lost"_s,
        .title = u"out of reach"_s,
        .link = {.interfaceName = u"wlan0"_s},
        .downloadMbps = 1,
        .uploadMbps = 1});
    return all;
}

std::vector<platform::NearbyNetwork> networks(int count, int scan)
{
    std::vector<platform::NearbyNetwork> found;
    for (int i = 0; i < count; ++i)
        found.push_back({.ssid = u"neighbour %1 of %2"_s.arg(i).arg(scan),
            .bssid = QString::asprintf("02:00:00:00:%02x:%02x", i / 256, i % 256),
            .channel = platform::WiFiChannel {1 + i % 13, platform::ChannelBand::TwoGHz},
            .signalDbm = -40 - i % 50});
    return found;
}

} // namespace

SoakWorld::SoakWorld(QApplication& application)
{
    for (const char* bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(bus, desktop.address().toUtf8());
    if (!m_folder.isValid() || !desktop.start())
        qFatal("no temporary folder or no bus");
    program = std::make_unique<demo::StagedProgram>(application,
        demo::StageOptions {.scenes = scenes(), .held = u"home"_s},
        [this](demo::Stage& stage) { change(stage); });
    // The program gives the desktop three seconds, which here are none.
    if (!until([this] { return panel->isPresent() == true; }))
        qFatal("no answer on the bus");
    pass(5s);
}

SoakWorld::~SoakWorld()
{
    delegate().applicationWillTerminate();
    program->settle();
    program.reset();
}

void SoakWorld::change(demo::Stage& stage)
{
    auto& parts = stage.parts;
    useRealDesktop(parts.platform, parts);
    m_sleepMonitor = parts.platform.sleepMonitor.get();
    parts.interface->script = [this, &stage]() -> std::optional<platform::LinkReading> {
        if (stage.parts.wifi.isUnplugged)
            return {};
        auto reading = stage.link();
        if (journey != 0 && reading.ssid)
            reading.ssid = u"Train %1"_s.arg(journey.load());
        return reading;
    };
    parts.scanner.waiting.whenAsked = [this, &clock = parts.clock] {
        ++m_scans;
        m_scanEnd = clock.after(kScanTime, [this] { endScan(); });
    };
}

void SoakWorld::useRealDesktop(platform::Platform& platform, simulated::SimulatedPlatform& parts)
{
    const auto linkTo = [&](QDBusConnection::BusType bus) {
        return std::make_unique<bus::BusLink>(bus, parts.clock, parts.queues.userInitiated);
    };
    auto systemBus = linkTo(QDBusConnection::SystemBus);
    auto sessionBus = linkTo(QDBusConnection::SessionBus);
    m_unusedPermission = std::exchange(
        platform.locationManager, std::make_unique<radio::ScanPermission>(*systemBus));
    platform.appearance = std::make_unique<desktop::PortalAppearance>(*sessionBus);
    platform.statusNotifierHost = std::make_unique<desktop::SessionStatusNotifierHost>(*sessionBus);
    platform.userNotifications = std::make_unique<desktop::FreedesktopNotifications>(*sessionBus);
    platform.userDefaults = std::make_unique<desktop::SettingsFile>(
        m_folder.filePath(u"settings.json"_s), platform.queues->utility);
    platform.userDefaults->setBoolean(u"netvane.onboarding.completed"_s, true);
    platform.systemBus = std::move(systemBus);
    platform.sessionBus = std::move(sessionBus);
    appearance = platform.appearance.get();
    panel = platform.statusNotifierHost.get();
}

/// Every third scan fails; the others find hundreds of networks that were never there before.
void SoakWorld::endScan()
{
    constexpr int kStep = 37;
    if (isScanConstant)
        parts().scanner.finish(networks(kFewestNetworks, 0));
    else if (m_scans % 3 == 0)
        parts().scanner.finish(base::Failure {base::FailureKind::Other, u"the driver is busy"_s});
    else
        parts().scanner.finish(networks(
            kFewestNetworks + m_scans * kStep % (kMostNetworks - kFewestNetworks), m_scans));
}

void SoakWorld::pass(std::chrono::milliseconds time, std::chrono::milliseconds step)
{
    program->pass(time, step);
    const auto lines = m_log.take();
    m_logLines += lines.size();
    complaints += lines.filter(u".qml:"_s);
}

bool SoakWorld::until(const std::function<bool()>& isReached)
{
    QDeadlineTimer deadline(kRealLimit);
    while (!isReached() && !deadline.hasExpired()) {
        QThread::msleep(1);
        program->settle();
    }
    return isReached();
}

void SoakWorld::sleep(std::chrono::milliseconds time)
{
    program->clock().sleep(time);
    Q_EMIT m_sleepMonitor->didWake();
    program->settle();
}

Usage SoakWorld::settledUsage()
{
    parts().queues.utility.waitForDone();
    // Threads of look-ups end a moment after their answer.
    for (int round = 0; round < 20; ++round) {
        QThread::msleep(10);
        program->settle();
    }
    Usage usage = usageNow();
    usage.timers = program->clock().timerCount();
    usage.settingsFiles = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size();
    usage.logLines = m_logLines;
    return usage;
}

} // namespace netvane::soak
