#include "app/program_options.h"
#include "app/program_run.h"
#include "app/views_library.h"
#include "base/log.h"
#include "platform/platform.h"
#include "system/linux_platform.h"

#include <malloc.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.app")

QStringList wordsOf(int argc, char** argv)
{
    QStringList words;
    for (int i = 0; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return words;
}

int run(QApplication& application)
{
    app::ViewsLibrary library(app::ViewsLibrary::defaultPath());
    return app::runProgram(application, [&application, &library] {
        return std::make_unique<app::Program>(application, system::makePlatform(),
            std::bind_front(&app::ViewsLibrary::makeViews, &library));
    });
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
    if (const auto answer = app::answerTo(wordsOf(argc, argv))) {
        std::fputs(qPrintable(answer->text), answer->status == 0 ? stdout : stderr);
        return answer->status;
    }
    if (!app::hasDisplay()) {
        base::log(logCategory(),
            u"Netvane: There is no display to run on; start it from a desktop session"_s);
        return 1;
    }
    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(u"org.netvane.Netvane"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    const int status = run(application);
    // Not by way of the application's destructor: it waits for Qt's own look-ups of names, many
    // seconds where no name server answers. There is nothing left to save.
    std::fflush(nullptr);
    std::_Exit(status);
}
