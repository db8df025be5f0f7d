#include "base/descriptor_limit.h"
#include "base/log.h"
#include "base/termination_signals.h"
#include "base/write_all.h"
#include "history/history_store.h"
#include "insights/report_text.h"
#include "platform/platform.h"
#include "radio/air/air_recorder.h"
#include "radio/air/recording_redaction.h"
#include "report/air_session.h"
#include "report/air_text.h"
#include "report/history_text.h"
#include "report/redaction.h"
#include "report/report_options.h"
#include "report/report_output.h"
#include "report/report_session.h"
#include "report/trace_session.h"
#include "report/verdict_object.h"
#include "report/verdict_session.h"
#include "system/linux_platform.h"
#include "timeline/outages.h"
#include "timeline/recorded_source.h"
#include "verdict/verdict_service.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QLocale>

#include <unistd.h>

#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
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

void deliver(
    const QString& text, const report::ReportOptions& options, base::Clock& clock, int status = 0)
{
    showProgress({});
    report::writeReport(
        options.output, text.toUtf8(), qApp, clock, [&options, status](const QString& problem) {
            const QString name = options.output.value_or(u"standard output"_s);
            QCoreApplication::exit(problem.isEmpty() ? status : complain(name + u": "_s + problem));
        });
}

int makeReport(platform::Platform& platform, const report::ReportOptions& options)
{
    report::ReportSession session(platform, options);
    QObject::connect(&session, &report::ReportSession::progress, &showProgress);
    QObject::connect(&session, &report::ReportSession::finished, qApp, [&] {
        auto input = session.services().readings();
        if (options.redact)
            input = report::redacted(std::move(input));
        deliver(
            insights::reportText(input, QDateTime::currentDateTime(), QLocale::system()) + u'\n',
            options, *platform.clock);
    });
    session.start();
    return QCoreApplication::exec();
}

platform::AirReading shown(
    const platform::AirReading& reading, const report::ReportOptions& options)
{
    return options.redact ? report::redacted(reading) : reading;
}

QString airWords(const platform::AirReading& reading, const platform::AirChange& change,
    const report::ReportOptions& options)
{
    return options.asJson ? QString::fromUtf8(
               QJsonDocument(report::airObject(shown(reading, options), change)).toJson())
                          : report::airText(shown(reading, options), change);
}

int printAir(platform::Platform& platform, const report::ReportOptions& options)
{
    report::AirSession session(platform);
    QObject::connect(&session, &report::AirSession::finished, qApp, [&] {
        if (const auto& air = session.reading())
            deliver(airWords(air.value(), session.change(), options), options, *platform.clock);
        else
            QCoreApplication::exit(complain(air.failure().text));
    });
    showProgress(u"Counting"_s);
    session.start(options.duration.value_or(report::AirSession::kDuration));
    return QCoreApplication::exec();
}

int printReplay(platform::Platform& platform, const report::ReportOptions& options)
{
    QFile file(options.file);
    if (!file.open(QIODevice::ReadOnly))
        return complain(options.file + u": "_s + file.errorString());
    const auto recording = radio::recordingOf(file.read(radio::kLongestRecording));
    const auto passes = recording ? radio::passesOf(*recording) : std::vector<size_t>();
    if (passes.empty())
        return complain(options.file + u": is no recording"_s);
    const auto last = radio::readingAt(*recording, passes.back());
    const auto change = platform::changeBetween(radio::readingAt(*recording, passes.front()), last);
    deliver(airWords(last, change, options), options, *platform.clock);
    return QCoreApplication::exec();
}

int makeRecording(platform::Platform& platform, const report::ReportOptions& options)
{
    const auto duration = options.duration.value_or(60s);
    radio::AirRecorder recorder(*platform.clock, platform.queues->utility);
    QObject::connect(&recorder, &radio::AirRecorder::finished, qApp, [&] {
        auto target = options;
        target.output = options.file;
        if (const auto& made = recorder.recording())
            deliver(QString::fromLatin1(radio::recordingText(radio::redacted(made.value()))),
                target, *platform.clock);
        else
            QCoreApplication::exit(complain(made.failure().text));
    });
    showProgress(u"Recording for %1 seconds"_s.arg(duration.count()));
    recorder.start(duration);
    return QCoreApplication::exec();
}

/// The verdict as it is now, in the form that was asked for.
QString verdictNow(const verdict::VerdictService& verdicts, const report::ReportOptions& options,
    const base::Clock& clock, const report::AirSession& session)
{
    using report::Outlet;
    const auto& verdict = verdicts.verdict();
    const auto& evidence = verdicts.evidence();
    QString text;
    if (options.outlet == Outlet::Verdict) {
        text = report::verdictText(verdict);
    } else if (options.outlet == Outlet::Prometheus) {
        text = report::prometheusText(verdict, evidence);
    } else {
        auto whole = report::verdictObject(verdict, evidence, clock.now());
        if (const auto& air = session.reading())
            whole.insert(
                u"air"_s, report::airObject(shown(air.value(), options), session.change()));
        const QJsonDocument object(whole);
        const bool isLine = options.outlet == Outlet::Watch;
        text = QString::fromUtf8(
            object.toJson(isLine ? QJsonDocument::Compact : QJsonDocument::Indented));
        if (isLine)
            text += u'\n';
    }
    return options.redact ? report::redacted(text, evidence) : text;
}

int makeVerdict(platform::Platform& platform, const report::ReportOptions& options)
{
    report::VerdictSession session(platform, options);
    const bool isWatching = options.outlet == report::Outlet::Watch;
    report::AirSession air(platform);
    const auto text = [&] { return verdictNow(session.verdicts(), options, *platform.clock, air); };
    if (isWatching)
        QObject::connect(&session, &report::VerdictSession::changed, qApp, [&] {
            if (const int error = print(STDOUT_FILENO, text()); error != 0)
                QCoreApplication::exit(complain(u"standard output: "_s + qt_error_string(error)));
        });
    QObject::connect(&session, &report::VerdictSession::finished, qApp, [&] {
        const int status = options.outlet == report::Outlet::Verdict
            ? report::exitStatus(session.verdicts().verdict().cause)
            : 0;
        if (isWatching)
            QCoreApplication::exit(status);
        else if (options.outlet == report::Outlet::Json)
            air.finish();
        else
            deliver(text(), options, *platform.clock, status);
    });
    QObject::connect(&air, &report::AirSession::finished, qApp,
        [&] { deliver(text(), options, *platform.clock); });
    if (options.outlet == report::Outlet::Json)
        air.start({});
    session.start();
    return QCoreApplication::exec();
}

int makeTrace(platform::Platform& platform, const report::ReportOptions& options)
{
    constexpr int kNotReached = 20;
    report::TraceSession session(
        *platform.clock, *platform.hopProbes, options.traceHost, options.redact);
    QObject::connect(
        &session, &report::TraceSession::hopFound, qApp, [&] { showProgress(session.lastHop()); });
    QObject::connect(&session, &report::TraceSession::finished, qApp, [&] {
        const auto text = options.asJson ? QString::fromUtf8(session.json(platform.clock->now()))
                                         : session.text();
        deliver(text, options, *platform.clock, session.isReached() ? 0 : kNotReached);
    });
    session.start();
    return QCoreApplication::exec();
}

/// Measures nothing: what the desktop program recorded.
int printHistory(platform::Platform& platform, const report::ReportOptions& options)
{
    using std::chrono::duration_cast;
    const auto time
        = duration_cast<std::chrono::milliseconds>(platform.clock->now().time_since_epoch());
    const auto to = history::Milliseconds(time.count());
    const auto from = to - duration_cast<std::chrono::milliseconds>(options.history).count();
    history::HistoryStore store(history::HistoryStore::defaultPath());
    QByteArray text;
    if (options.asJson || options.asCsv) {
        const auto batch = store.read(from, to);
        text = options.asJson ? report::historyJson(batch, options.redact)
                              : report::historyCsv(batch, options.redact);
    } else {
        text = timeline::providerPage(
            timeline::factsOf(store, timeline::Milliseconds(from), timeline::Milliseconds(to)))
                   .toUtf8();
    }
    deliver(QString::fromUtf8(text), options, *platform.clock);
    return QCoreApplication::exec();
}

int run(const report::ReportOptions& options)
{
    const base::TerminationSignals terminationSignals;
    const int ended = options.outlet == report::Outlet::Watch ? 0 : 1;
    QObject::connect(&terminationSignals, &base::TerminationSignals::received, qApp,
        [ended] { QCoreApplication::exit(ended); });
    auto platform = system::makePlatform();
    if (options.outlet == report::Outlet::History)
        return printHistory(platform, options);
    if (options.outlet == report::Outlet::Record)
        return makeRecording(platform, options);
    if (options.outlet == report::Outlet::Air)
        return options.file.isEmpty() ? printAir(platform, options)
                                      : printReplay(platform, options);
    if (options.outlet == report::Outlet::Trace)
        return makeTrace(platform, options);
    return options.outlet == report::Outlet::Report ? makeReport(platform, options)
                                                    : makeVerdict(platform, options);
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
