#pragma once

#include "bus/bus_link.h"
#include "demo/script.h"
#include "demo/staged_program.h"
#include "desktop/freedesktop_notifications.h"
#include "desktop/settings_file.h"
#include "support/captured_log.h"
#include "support/fake_bus_service.h"
#include "support/private_bus.h"
#include "usage.h"

#include <QDeadlineTimer>
#include <QTemporaryDir>
#include <QThread>

namespace netvane::soak {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

/// The whole program on the demonstration's platform, with the real settings file, a real bus
/// and the classes that use it. Main thread.
class SoakWorld {
public:
    explicit SoakWorld(QApplication& application)
    {
        for (const char* variable : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
            qputenv(variable, m_bus.address().toUtf8());
        startBus();
        program = std::make_unique<demo::StagedProgram>(application,
            demo::StageOptions {.scenes = scenes(), .held = u"home"_s, .hasStatusArea = true},
            [this](demo::Stage& stage) { change(stage); });
        pass(5s);
    }
    ~SoakWorld()
    {
        delegate().applicationWillTerminate();
        program->settle();
        program.reset();
    }

    void pass(std::chrono::milliseconds time, std::chrono::milliseconds step = 2500ms)
    {
        program->pass(time, step);
        const auto lines = m_log.take();
        logLines += lines.size();
        complaints += lines.filter(u".qml:"_s);
    }
    /// Waits in real time for an event of the bus; records a complaint if it does not come.
    void expect(const char* what, const std::function<bool()>& isReached)
    {
        QDeadlineTimer deadline(10s);
        while (!isReached() && !deadline.hasExpired()) {
            QThread::msleep(1);
            program->settle();
        }
        if (!isReached())
            complaints.append(QString::fromLatin1(what));
    }
    /// A bus with a service that shows notifications.
    void startBus()
    {
        if (!m_bus.start())
            qFatal("no bus");
        m_shower = std::make_unique<test::FakeBusService>(m_bus.address(),
            u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
            [this](const QDBusMessage& call) {
                m_shower->calls.clear();
                return call.member() == u"GetCapabilities"_s
                    ? call.createReply(QStringList {u"body"_s})
                    : call.createReply(uint(++shownNotifications));
            });
    }
    /// Kills the bus with all its services, without notice.
    void stopBus()
    {
        m_shower.reset();
        m_bus.stop();
    }
    /// The machine sleeps and wakes.
    void sleep(std::chrono::milliseconds time)
    {
        program->clock().sleep(time);
        Q_EMIT m_sleepMonitor->didWake();
        program->settle();
    }
    /// What the program uses while nothing runs.
    std::vector<Figure> settledUsage()
    {
        parts().queues.utility.waitForDone();
        // Threads of look-ups end a moment after their answer.
        for (int round = 0; round < 20; ++round) {
            QThread::msleep(10);
            program->settle();
        }
        auto usage = usageNow();
        usage.push_back({"running timers", program->clock().timerCount()});
        usage.push_back({"files of settings", entries(m_folder.path())});
        return usage;
    }

    app::AppDelegate& delegate() { return program->delegate(); }
    simulated::SimulatedPlatform& parts() { return program->stage().parts; }

    std::unique_ptr<demo::StagedProgram> program;
    std::atomic<int> journey = 0; ///< not zero: the number in the name of a new network
    bool isScanConstant = false; ///< each scan finds the same networks
    qint64 logLines = 0;
    qint64 shownNotifications = 0;
    QStringList complaints; ///< warnings of the views' engine, and events that did not come

private:
    /// The demonstration's, with look-ups that end at once.
    static std::vector<demo::Scene> scenes()
    {
        auto all = demo::scenes();
        for (auto& scene : all) {
            if (scene.lookupTime)
                scene.lookupTime = 0us;
        }
        return all;
    }

    void change(demo::Stage& stage)
    {
        auto& parts = stage.parts;
        auto& platform = parts.platform;
        auto bus = std::make_unique<bus::BusLink>(
            QDBusConnection::SessionBus, parts.clock, parts.queues.userInitiated);
        platform.userNotifications = std::make_unique<desktop::FreedesktopNotifications>(*bus);
        platform.sessionBus = std::move(bus);
        platform.userDefaults = std::make_unique<desktop::SettingsFile>(
            m_folder.filePath(u"settings.json"_s), platform.queues->utility);
        platform.userDefaults->setBoolean(u"netvane.onboarding.completed"_s, true);
        m_sleepMonitor = platform.sleepMonitor.get();
        parts.interface->script = [this, &stage]() -> std::optional<platform::LinkReading> {
            auto reading = stage.link();
            if (journey != 0 && reading.ssid)
                reading.ssid = u"Train %1"_s.arg(journey.load());
            return reading;
        };
        parts.scanner.waiting.whenAsked = [this, &clock = parts.clock] {
            ++m_scans;
            m_scanEnd = clock.after(3s, [this] { endScan(); });
        };
    }

    /// Each scan finds hundreds of new networks.
    void endScan()
    {
        const int scan = isScanConstant ? 0 : m_scans;
        std::vector<platform::NearbyNetwork> found;
        for (int i = 0; i < 200 + scan * 37 % 800; ++i)
            found.push_back({.ssid = u"neighbour %1 of %2"_s.arg(i).arg(scan),
                .bssid = QString::asprintf("02:00:00:00:%02x:%02x", i / 256, i % 256),
                .channel = platform::WiFiChannel {1 + i % 13, platform::ChannelBand::TwoGHz},
                .signalDbm = -40 - i % 50});
        parts().scanner.finish(found);
    }

    test::CapturedLog m_log;
    QTemporaryDir m_folder;
    test::PrivateBus m_bus;
    std::unique_ptr<test::FakeBusService> m_shower;
    platform::SleepMonitor* m_sleepMonitor = nullptr;
    int m_scans = 0;
    std::unique_ptr<base::Timer> m_scanEnd;
};

} // namespace netvane::soak
