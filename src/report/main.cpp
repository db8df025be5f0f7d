#include "base/descriptor_limit.h"
#include "base/log.h"
#include "base/termination_signals.h"
#include "base/write_all.h"
#include "insights/report_text.h"
#include "platform/platform.h"
#include "report/redaction.h"
#include "report/report_options.h"
#include "report/report_output.h"
#include "report/report_session.h"
#include "system/linux_platform.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

#include <unistd.h>

#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

// It has some 20 open while it tests the speed.
constexpr unsigned kDescriptors = 64;

int print(int stream, const QString& text)
{
    return base::writeAll(stream, text.toUtf8());
}

/// Returns the status that the program ends with when it has this to complain of.
int complain(const QString& problem)
{
    print(STDERR_FILENO, u"netvane-report: "_s + problem + u'\n');
    return 1;
}

/// What was asked for in place of a report, or why nothing can be done. Returns the status.
int answer(const report::Message& message)
{
    const int error = print(message.status == 0 ? STDOUT_FILENO : STDERR_FILENO, message.text);
    return error == 0 ? message.status : complain(u"standard output: "_s + qt_error_string(error));
}

/// What the services have to say goes to the system log of the desktop program only; here it would
/// stand between the user and the report. Only a lost speed test is the user's business.
void takeLine(const QString& line)
{
    if (line.startsWith(u"Settings: could not be stored"_s))
        complain(line);
}

/// One line that is written over, and only where somebody watches.
void showProgress(const QString& text)
{
    if (::isatty(STDERR_FILENO) == 1)
        print(STDERR_FILENO, u"\r\033[K"_s + text);
}

void deliver(const QString& text, const report::ReportOptions& options, base::Clock& clock)
{
    showProgress({});
    report::writeReport(
        options.output, text.toUtf8() + '\n', qApp, clock, [&options](const QString& problem) {
            const QString name = options.output.value_or(u"standard output"_s);
            QCoreApplication::exit(problem.isEmpty() ? 0 : complain(name + u": "_s + problem));
        });
}

int run(const report::ReportOptions& options)
{
    const base::TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &base::TerminationSignals::received, qApp,
        [] { QCoreApplication::exit(1); });
    auto platform = system::makePlatform();
    report::ReportSession session(platform, options);
    QObject::connect(&session, &report::ReportSession::progress, &showProgress);
    QObject::connect(&session, &report::ReportSession::finished, qApp, [&] {
        auto input = session.services().readings();
        if (options.redact)
            input = report::redacted(std::move(input));
        deliver(insights::reportText(input, QDateTime::currentDateTime(), QLocale::system()),
            options, *platform.clock);
    });
    session.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    if (const auto problem = base::descriptorProblem(kDescriptors))
        return complain(*problem);
    // The settings are those of the program with windows.
    QCoreApplication::setApplicationName(u"netvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NETVANE_VERSION));
    const QCoreApplication application(argc, argv);
    const auto parsed = report::parseOptions(QCoreApplication::arguments());
    if (const auto* message = std::get_if<report::Message>(&parsed))
        return answer(*message);
    base::setLogSink(takeLine);
    const int status = run(std::get<report::ReportOptions>(parsed));
    // Not by way of the application's destructor, which waits for Qt's own look-ups of names.
    std::_Exit(status);
}
