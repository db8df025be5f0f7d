#include "app/program_options.h"

#include "platform/instance_claim.h"

#include <QCommandLineParser>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

const QString kHelp
    = u"Usage: netvane [--air | --time-line | --help | --version]\n"
      "Says in plain words what is wrong with the Wi-Fi, from the status area of the desktop.\n"
      "On a desktop without a status area, starting it again shows the window of the copy that\n"
      "runs.\n\n"
      "Options:\n"
      "  --air        Open the window \"The air\", in the copy that runs if there is one.\n"
      "  --time-line  Open the window \"Time line\", in the copy that runs if there is one.\n"
      "  --help       Show this text.\n"
      "  --version    Show the version.\n"_s;

// What Qt takes out of the command line later. Desktops that restore a session start the program
// with -session.
const QStringList kQtOptionsWithValue {u"session"_s, u"platform"_s, u"platformpluginpath"_s,
    u"platformtheme"_s, u"plugin"_s, u"display"_s, u"name"_s, u"style"_s, u"stylesheet"_s,
    u"qwindowgeometry"_s, u"qwindowicon"_s, u"qwindowtitle"_s, u"qmljsdebugger"_s};
const QString kQtOption = u"reverse"_s;

CommandLine misuse(const QString& problem)
{
    return {Answer {problem + u"\nTry 'netvane --help'.\n"_s, 2}, {}};
}

} // namespace

CommandLine readCommandLine(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help(u"help"_s);
    const QCommandLineOption version(u"version"_s);
    const QCommandLineOption air(platform::kAirAction);
    const QCommandLineOption timeLine(platform::kTimeLineAction);
    parser.addOptions({help, version, air, timeLine, QCommandLineOption(kQtOption)});
    for (const QString& name : kQtOptionsWithValue)
        parser.addOption(QCommandLineOption(name, {}, u"value"_s));
    if (!parser.parse(arguments))
        return misuse(parser.errorText());
    if (parser.isSet(help))
        return {Answer {kHelp}, {}};
    if (parser.isSet(version))
        return {Answer {u"netvane "_s + QStringLiteral(NETVANE_VERSION) + u'\n'}, {}};
    if (!parser.positionalArguments().isEmpty())
        return misuse(u"Unexpected argument '%1'."_s.arg(parser.positionalArguments().first()));
    return {{},
        parser.isSet(air)            ? platform::kAirAction
            : parser.isSet(timeLine) ? platform::kTimeLineAction
                                     : QString()};
}

} // namespace netvane::app
