#include "base/log.h"
#include "base/replace_file.h"
#include "base/termination_signals.h"
#include "insights/report_text.h"
#include "platform/platform.h"
#include "report/redaction.h"
#include "report/report_options.h"
#include "report/report_session.h"
#include "system/linux_platform.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

namespace {

/// What the services have to say goes to the system log of the desktop program only; here it would
/// stand between the user and the report.
void dropLine(const QString&) { }

void print(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

/// One line that is written over, and only where somebody watches.
void showProgress(const QString& text)
{
    if (::isatty(STDERR_FILENO) == 1)
        print(stderr, u"\r\033[K"_s + text);
}

/// Returns the status that the program ends with.
int deliver(const QString& report, const report::ReportOptions& options)
{
    showProgress({});
    if (!options.output) {
        print(stdout, report + u'\n');
        return std::fflush(stdout) == 0 ? 0 : 1;
    }
    const QString problem = base::replaceFile(*options.output, report.toUtf8() + '\n');
    if (problem.isEmpty())
        return 0;
    print(stderr, u"netvane-report: %1: %2\n"_s.arg(*options.output, problem));
    return 1;
}

int run(const report::ReportOptions& options)
{
    const base::TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &base::TerminationSignals::received, qApp,
        [] { QCoreApplication::exit(1); });
    auto platform = system::makePlatform();
    report::ReportSession session(platform, options);
    QObject::connect(&session, &report::ReportSession::progress, &showProgress);
    QObject::connect(&session, &report::ReportSession::finished, qApp, [&session, &options] {
        auto input = session.services().readings();
        if (options.redact)
            input = report::redacted(std::move(input));
        const auto text
            = insights::reportText(input, QDateTime::currentDateTime(), QLocale::system());
        QCoreApplication::exit(deliver(text, options));
    });
    session.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    // The settings are those of the program with windows.
    QCoreApplication::setApplicationName(u"netvane"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(NETVANE_VERSION));
    const QCoreApplication application(argc, argv);
    const auto parsed = report::parseOptions(QCoreApplication::arguments());
    if (const auto* message = std::get_if<report::Message>(&parsed)) {
        print(message->status == 0 ? stdout : stderr, message->text);
        return message->status;
    }
    base::setLogSink(dropLine);
    const int status = run(std::get<report::ReportOptions>(parsed));
    // Not by way of the application's destructor, which waits for Qt's own look-ups of names.
    std::fflush(nullptr);
    std::_Exit(status);
}
