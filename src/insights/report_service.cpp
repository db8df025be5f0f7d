#include "insights/report_service.h"

#include "base/background_work.h"
#include "base/decimal_text.h"
#include "base/log.h"
#include "base/replace_file.h"

#include <QDateTime>
#include <QLocale>
#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace netvane::insights {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.insights")

QDateTime localTime(std::chrono::system_clock::time_point time)
{
    const auto sinceEpoch
        = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
}

/// One locale for the words and the order of a date. QLocale::system() would take the words from
/// another category where the two differ.
QLocale localeOfDates()
{
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QString name = qEnvironmentVariable(variable); !name.isEmpty())
            return QLocale(name);
    }
    return QLocale::c();
}

QString proposedFileName(std::chrono::system_clock::time_point now)
{
    QString seconds = base::shortestDecimal(now);
    if (!seconds.contains(u'.'))
        seconds += u".0"_s;
    return u"Netvane-Report-"_s + seconds + u".txt"_s;
}

} // namespace

ReportService::ReportService(
    Readings readings, const base::Clock& clock, base::WorkQueue& queue, const ReportExits& exits)
    : m_readings(std::move(readings))
    , m_clock(clock)
    , m_queue(queue)
    , m_exits(exits)
{
}

QString ReportService::generateReport(const ReportInputs& inputs) const
{
    return reportText(inputs, localTime(m_clock.now()), localeOfDates());
}

std::optional<QString> ReportService::currentReport() const
{
    const auto inputs = m_readings();
    return inputs ? std::optional(generateReport(*inputs)) : std::nullopt;
}

void ReportService::copyReport(const QString& report)
{
    m_exits.clipboard.setText(report);
}

void ReportService::saveReport(const QString& report, const Completion& completion)
{
    // The panel may outlive this object.
    m_exits.savePanel.show(u"Save Diagnostic Report"_s, proposedFileName(m_clock.now()),
        [self = QPointer(this), report, completion](const std::optional<QString>& path) {
            if (self && path)
                self->write(*path, report, completion);
            else if (completion)
                completion(false, {});
        });
}

void ReportService::write(const QString& path, const QString& report, const Completion& completion)
{
    base::runInBackground(
        m_queue, this, [path, bytes = report.toUtf8()] { return base::replaceFile(path, bytes); },
        [completion](const QString& error) {
            if (!error.isEmpty())
                base::log(logCategory(), u"ReportService: Failed to save file: "_s + error);
            if (completion)
                completion(error.isEmpty(), error);
        });
}

void ReportService::shareReport(const QString& report)
{
    m_exits.sharePicker.show(report);
}

} // namespace netvane::insights
