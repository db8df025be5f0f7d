#pragma once

#include "base/clock.h"
#include "report/report_options.h"
#include "services/services.h"

#include <QObject>

#include <memory>

namespace netvane::report {

/// Measures as the desktop program does, until the verdict is certain, the time is over, or for
/// good where changes are watched. Main thread.
class VerdictSession : public QObject {
    Q_OBJECT

public:
    /// `platform` outlives the session.
    VerdictSession(platform::Platform& platform, const ReportOptions& options);
    ~VerdictSession() override;

    void start();
    const verdict::VerdictService& verdicts() const { return *m_services.verdictService; }

Q_SIGNALS:
    /// The verdict is there, or another one than before.
    void changed();
    void finished();

private:
    void followGateway(const std::optional<QString>& gateway);
    void finishIfCertain();
    void finish();

    const ReportOptions m_options;
    services::Services m_services;
    std::unique_ptr<base::Timer> m_limit;
    std::unique_ptr<base::Timer> m_interval;
    bool m_isStarted = false;
    bool m_isOver = false;
};

} // namespace netvane::report
