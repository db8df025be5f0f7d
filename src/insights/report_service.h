#pragma once

#include "base/clock.h"
#include "base/work_queues.h"
#include "insights/report_text.h"
#include "platform/exports.h"

#include <QObject>

#include <functional>
#include <optional>

namespace netvane::insights {

/// Where a report can be exported to.
struct ReportExits {
    platform::Clipboard& clipboard;
    platform::SavePanel& savePanel;
    platform::SharePicker& sharePicker;
};

/// Makes the diagnostic report from the current readings and exports it. Stores nothing. Main
/// thread; files are written on `queue`, so that a slow disk does not block the windows.
class ReportService : public QObject {
    Q_OBJECT

public:
    /// Reads the running services; absent when there are none.
    using Readings = std::function<std::optional<ReportInputs>()>;
    /// `problem` says why a file was not written; empty when the user chose none.
    using Completion = std::function<void(bool written, const QString& problem)>;

    ReportService(Readings readings, const base::Clock& clock, base::WorkQueue& queue,
        const ReportExits& exits);

    /// In the language of the user's dates (LC_TIME, locale(7)).
    QString generateReport(const ReportInputs& inputs) const;
    /// Absent when there is nothing to report on.
    std::optional<QString> currentReport() const;

    void copyReport(const QString& report);
    /// Asks where to and writes the file wholly or not at all. `completion` may be empty.
    void saveReport(const QString& report, const Completion& completion = {});
    void shareReport(const QString& report);

private:
    void write(const QString& path, const QString& report, const Completion& completion);

    const Readings m_readings;
    const base::Clock& m_clock;
    base::WorkQueue& m_queue;
    const ReportExits m_exits;
};

} // namespace netvane::insights
