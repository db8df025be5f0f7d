#include "app/program_run.h"

#include "base/log.h"
#include "base/termination_signals.h"
#include "shell/desktop_exports.h"
#include "shell/desktop_url_opener.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

platform::Platform withDesktop(platform::Platform platform)
{
    if (!platform.urlOpener)
        platform.urlOpener = std::make_unique<shell::DesktopUrlOpener>();
    platform.clipboard = std::make_unique<shell::DesktopClipboard>();
    platform.savePanel = std::make_unique<shell::DesktopSavePanel>();
    platform.sharePicker = std::make_unique<shell::DesktopSharePicker>(
        *platform.clipboard, platform.queues->utility);
    return platform;
}

Program* s_running = nullptr; // for a function that can be given nothing

/// Qt calls exit() when the display is gone. Static destructors below threads that still work would
/// be the crash at the end of many a session; what has to be done is done here instead.
void endWithoutDisplay()
{
    if (!s_running)
        return;
    base::log(logCategory(), u"Netvane: The display is gone"_s);
    std::exchange(s_running, nullptr)->delegate().applicationWillTerminate();
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

} // namespace

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        || qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

void logOfQt(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    base::writeLogLine(qFormatLogMessage(type, context, message));
}

Program::Program(QApplication& application, platform::Platform platform, MakeViews makeViews)
    : m_platform(withDesktop(std::move(platform)))
    , m_delegate(m_platform, m_activity, m_notifications, std::move(makeViews))
{
    follow(application);
}

void Program::follow(QApplication& application)
{
    QObject::connect(&application, &QGuiApplication::applicationStateChanged, &m_delegate,
        [this](Qt::ApplicationState state) {
            if (state != Qt::ApplicationActive)
                return;
            m_delegate.applicationDidBecomeActive();
            Q_EMIT m_activity.didBecomeActive();
        });
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &m_delegate,
        &AppDelegate::applicationWillTerminate);
    auto* claim = m_platform.instanceClaim.get();
    QObject::connect(claim, &platform::InstanceClaim::startedAgain, &m_delegate,
        [this](const platform::StartRequest& request) {
            m_delegate.applicationShouldHandleReopen(false);
            m_delegate.applicationStartedAgain(request);
        });
    QObject::connect(claim, &platform::InstanceClaim::decided, &m_delegate, [this](bool isFirst) {
        if (!isFirst) {
            base::log(logCategory(),
                u"Netvane: Already running in this session; see its icon in the status area, "
                "or its window where there is no status area"_s);
            QCoreApplication::quit();
            return;
        }
        m_delegate.applicationWillFinishLaunching();
        m_delegate.applicationDidFinishLaunching();
        m_delegate.perform(m_action);
    });
}

void Program::start(const QString& action)
{
    m_action = action;
    m_platform.instanceClaim->claim(action);
}

int runProgram(QApplication& application,
    const std::function<std::unique_ptr<Program>()>& makeProgram, const QString& action)
{
    const base::TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &base::TerminationSignals::received, &application,
        &QCoreApplication::quit);
    const auto program = makeProgram();
    s_running = program.get();
    std::atexit(endWithoutDisplay);
    program->start(action);
    const int status = QApplication::exec();
    s_running = nullptr;
    return status;
}

} // namespace netvane::app
