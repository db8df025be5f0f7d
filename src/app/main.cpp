#include "app/program_options.h"
#include "app/program_run.h"
#include "app/views_library.h"
#include "base/descriptor_limit.h"
#include "base/log.h"
#include "base/write_all.h"
#include "bus/bus_probe.h"
#include "history/history_store.h"
#include "platform/platform.h"
#include "system/linux_platform.h"

#include <QInputDevice>

#include <malloc.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

// 22 are open with a window; probes, look-ups of names and a speed test add to them.
constexpr unsigned kDescriptors = 96;

QStringList wordsOf(int argc, char** argv)
{
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return words;
}

/// Whether the program can run here; says why not.
bool mayBegin()
{
    const auto problem = base::descriptorProblem(kDescriptors);
    if (problem)
        base::log(logCategory(), u"Netvane: "_s + *problem);
    else if (!app::hasDisplay())
        base::log(logCategory(),
            u"Netvane: There is no display to run on; start it from a desktop session"_s);
    return !problem && app::hasDisplay();
}

/// Qt 6.4 crashes in the first text field where a Wayland compositor has no seat, that is no
/// keyboard or pointer for anybody: its input method takes the seat for granted. Which input method
/// there is is settled by then, so the program begins once more, with the plainest one.
void avoidCrashWithoutSeat(const std::vector<char*>& arguments)
{
    constexpr char kInputMethod[] = "QT_IM_MODULE";
    if (QGuiApplication::platformName() != u"wayland"_s || !QInputDevice::devices().isEmpty()
        || qEnvironmentVariableIsSet(kInputMethod))
        return;
    base::log(logCategory(), u"Netvane: This Wayland display has no keyboard and no pointer"_s);
    qputenv(kInputMethod, "compose");
    ::execv("/proc/self/exe", arguments.data());
}

platform::Platform makePlatform()
{
    auto platform = system::makePlatform();
    platform.historyFile = history::HistoryStore::defaultPath();
    return platform;
}

int run(QApplication& application, const QString& action)
{
    app::ViewsLibrary library(app::ViewsLibrary::defaultPath());
    return app::runProgram(
        application,
        [&application, &library] {
            return std::make_unique<app::Program>(application, makePlatform(),
                std::bind_front(&app::ViewsLibrary::makeViews, &library));
        },
        action);
}

} // namespace

int main(int argc, char** argv)
{
    // An arena for each thread that ever allocated costs more memory than waiting for one.
    ::mallopt(M_ARENA_MAX, 1);
    // A reader of our standard error that goes away is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(app::logOfQt);
    QCoreApplication::setApplicationName(u"netvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NETVANE_VERSION));
    const auto [answer, action] = app::readCommandLine(wordsOf(argc, argv));
    if (answer) {
        const int stream = answer->status == 0 ? STDOUT_FILENO : STDERR_FILENO;
        const int error = base::writeAll(stream, answer->text.toUtf8());
        if (error == 0)
            return answer->status;
        base::log(logCategory(), u"Netvane: Standard output: "_s + qt_error_string(error));
        return 1;
    }
    if (!mayBegin())
        return 1;
    if (!bus::prepareSessionBus())
        base::log(logCategory(), u"Netvane: The session bus does not answer, so it is not used"_s);
    // With the null at the end. Qt takes its own words out of the original.
    const std::vector<char*> arguments(argv, argv + argc + 1);
    QApplication application(argc, argv);
    avoidCrashWithoutSeat(arguments);
    QGuiApplication::setDesktopFileName(u"org.netvane.Netvane"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    const int status = run(application, action);
    // Not by way of the application's destructor: it waits for Qt's own look-ups of names, many
    // seconds where no name server answers. There is nothing left to save.
    std::fflush(nullptr);
    std::_Exit(status);
}
