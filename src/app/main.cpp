#include "app/app_delegate.h"
#include "app/desktop_clipboard.h"
#include "app/desktop_save_panel.h"
#include "app/desktop_share_picker.h"
#include "app/desktop_url_opener.h"
#include "app/notification_center.h"
#include "app/program_options.h"
#include "app/program_views.h"
#include "platform/application_activity.h"
#include "platform/linux/termination_signals.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "ui/view_engine.h"

#include <QApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

QStringList wordsOf(int argc, char** argv)
{
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return words;
}

/// Qt ends a program without a display by an abort; a sentence is kinder.
bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        || qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

/// What Qt itself has to say takes the way of all our lines: escaped, and never waiting.
void logOfQt(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    platform::log(qFormatLogMessage(type, context, message));
}

/// Runs the delegate's life along that of the event loop.
void drive(QApplication& application, app::AppDelegate& delegate,
    platform::ApplicationActivity& activity, platform::InstanceClaim& claim)
{
    QObject::connect(&application, &QGuiApplication::applicationStateChanged, &delegate,
        [&delegate, &activity](Qt::ApplicationState state) {
            if (state != Qt::ApplicationActive)
                return;
            delegate.applicationDidBecomeActive();
            Q_EMIT activity.didBecomeActive();
        });
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
        &app::AppDelegate::applicationWillTerminate);
    QObject::connect(&claim, &platform::InstanceClaim::startedAgain, &delegate, [&delegate] {
        delegate.applicationShouldHandleReopen(false);
        delegate.applicationStartedAgain();
    });
    QObject::connect(&claim, &platform::InstanceClaim::decided, &delegate, [&delegate](bool isFirst) {
        if (!isFirst) {
            platform::log(
                u"Netvane: Already running in this session; look for its icon in the status area"_s);
            QCoreApplication::quit();
            return;
        }
        delegate.applicationWillFinishLaunching();
        delegate.applicationDidFinishLaunching();
    });
}

/// Everything but the application object lives and goes in here.
int run(QApplication& application)
{
    const platform::TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &platform::TerminationSignals::received, &application,
        &QCoreApplication::quit);
    auto platform = platform::makePlatform();
    platform.urlOpener = std::make_unique<app::DesktopUrlOpener>();
    platform.clipboard = std::make_unique<app::DesktopClipboard>();
    platform.savePanel = std::make_unique<app::DesktopSavePanel>();
    platform.sharePicker
        = std::make_unique<app::DesktopSharePicker>(*platform.clipboard, platform.queues->utility);
    platform::ApplicationActivity activity;
    app::NotificationCenter notifications;
    app::ProgramViews views(platform);
    app::AppDelegate delegate(platform, activity, notifications, views);
    drive(application, delegate, activity, *platform.instanceClaim);
    platform.instanceClaim->claim();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    // A reader of our standard error that goes away is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(logOfQt);
    QCoreApplication::setApplicationName(u"netvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NETVANE_VERSION));
    if (const auto answer = app::answerTo(wordsOf(argc, argv))) {
        std::fputs(qPrintable(answer->text), answer->status == 0 ? stdout : stderr);
        return answer->status;
    }
    if (!hasDisplay()) {
        platform::log(u"Netvane: There is no display to run on; start it from a desktop session"_s);
        return 1;
    }
    ui::ViewEngine::prepareRendering();
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(u"org.netvane.Netvane"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    const int status = run(application);
    // Not by way of the application's destructor: it waits for Qt's own look-ups of names, many
    // seconds where no name server answers. There is nothing left to save.
    std::fflush(nullptr);
    std::_Exit(status);
}
