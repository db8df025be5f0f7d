// How long the first opening of the popover takes from the call to its first painted frame, ms, as
// in the program: the library of views is loaded with it. For `popover`, which starts this several
// times over, since nothing is first twice.

#include "app/faked_world.h"
#include "app/status_bar_manager.h"
#include "app/views_library.h"
#include "base/log.h"
#include "shell/popover_window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

using namespace netvane;

namespace {

constexpr std::chrono::seconds kLimit(10);

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    base::setLogSink([](const QString&) {});
    test::FakedWorld world;
    app::ViewsLibrary views(QStringLiteral(NETVANE_VIEWS));
    world.makeDelegate(std::bind_front(&app::ViewsLibrary::makeViews, &views));
    world.host->setPresent(true);
    // Seen, as on every day but the first.
    world.defaults->setBoolean(QStringLiteral("netvane.onboarding.completed"), true);
    world.launchAll();

    QTimer::singleShot(kLimit, qApp, [] { QCoreApplication::exit(1); });
    QElapsedTimer timer;
    timer.start();
    Q_EMIT world.delegate->statusBarManager()->statusItem()->activated(QSystemTrayIcon::Trigger);
    auto* window = world.delegate->popover()->window();
    if (!window)
        return 1;
    QObject::connect(window, SIGNAL(frameSwapped()), qApp, SLOT(quit()));
    const int status = QApplication::exec();
    std::printf("%f", double(timer.nsecsElapsed()) / 1e6);
    return status;
}
