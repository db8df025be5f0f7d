#include "app/program_run.h"
#include "base/log.h"
#include "base/system_clock.h"
#include "demo/month.h"
#include "demo/screenshots.h"
#include "demo/window_mark.h"
#include "shell/popover_window.h"

#include <QCommandLineParser>
#include <QSystemTrayIcon>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string_view>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;

namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.demo")

constexpr std::chrono::milliseconds kStartTime = 1s;

QStringList sceneNames()
{
    QStringList names;
    for (const auto& scene : demo::scenes())
        names.append(scene.name);
    return names;
}

/// Ends the program when it is asked for help, or for an option that there is not.
void parse(QCommandLineParser& parser, const QApplication& application)
{
    parser.setApplicationDescription(
        u"Netvane on made-up networks. Nothing is measured, sent or stored."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions(
        {{u"scene"_s, u"Stay with one scene: "_s + sceneNames().join(u", "_s) + u"."_s, u"name"_s},
            {u"popover"_s, u"Open the popover at the start."_s}, {u"light"_s, u"Light colours."_s},
            {u"dark"_s, u"Dark colours."_s},
            {u"screenshots"_s, u"Draw the views into a folder and end."_s, u"folder"_s}});
    parser.process(application);
}

demo::StageOptions stageOptions(const QCommandLineParser& parser)
{
    demo::StageOptions options;
    if (parser.isSet(u"scene"_s))
        options.held = parser.value(u"scene"_s);
    if (parser.isSet(u"light"_s))
        options.colorScheme = platform::ColorScheme::Light;
    if (parser.isSet(u"dark"_s))
        options.colorScheme = platform::ColorScheme::Dark;
    // Without one the window would take the popover's place.
    options.hasStatusArea = parser.isSet(u"popover"_s) || QSystemTrayIcon::isSystemTrayAvailable();
    return options;
}

/// What is answered by a text needs no display.
bool asksForText(int argc, char** argv)
{
    return std::any_of(argv + std::min(argc, 1), argv + argc, [](std::string_view word) {
        return word == "--help" || word == "-h" || word == "--version" || word == "-v";
    });
}

int run(QApplication& application, const demo::StageOptions& options, bool showsPopover)
{
    std::unique_ptr<demo::Stage> stage;
    std::unique_ptr<demo::WindowMark> mark;
    std::unique_ptr<base::Timer> opening;
    return app::runProgram(application, [&] {
        stage = std::make_unique<demo::Stage>(std::make_unique<base::SystemClock>(), options);
        mark = std::make_unique<demo::WindowMark>(application, *stage);
        auto program = std::make_unique<app::Program>(
            application, std::move(stage->parts.platform), &demo::viewsWithMonth);
        if (showsPopover)
            opening = stage->parts.clock.after(kStartTime, [&delegate = program->delegate()] {
                if (delegate.popover())
                    delegate.popover()->show({});
            });
        return program;
    });
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication::setApplicationName(u"netvane-demo"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NETVANE_VERSION));
    if (asksForText(argc, argv))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!app::hasDisplay()) {
        std::fputs("netvane-demo: There is no display to run on\n", stderr);
        return 1;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parse(parser, application);
    const auto options = stageOptions(parser);
    if (options.held && !sceneNames().contains(*options.held)) {
        const QString known = sceneNames().join(u", "_s);
        std::fputs(
            qPrintable(u"netvane-demo: There is no such scene. There are: %1\n"_s.arg(known)),
            stderr);
        return 2;
    }
    if (parser.isSet(u"screenshots"_s)) {
        base::setLogSink([](const QString&) {});
        return demo::drawScreenshots(application, parser.value(u"screenshots"_s)) ? 0 : 1;
    }
    qInstallMessageHandler(app::logOfQt);
    base::log(logCategory(),
        u"Netvane: This is a demonstration. Everything that it shows is made up, and "
        "nothing is sent"_s);
    return run(application, options, parser.isSet(u"popover"_s));
}
