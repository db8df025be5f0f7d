#pragma once

// This room is the program netvane-report: it takes some readings with the services of the desktop
// program and prints them as Markdown. It needs no window system and no bus.

#include "base/clock.h"
#include "report/report_options.h"
#include "services/services.h"

#include <QObject>

#include <memory>

namespace netvane::report {

/// Takes the readings for one report with the services of the program: the link once, the router
/// and the internet for some rounds, one lookup of a name. Nothing is changed, and nothing but the
/// settings file is read from the disk. Main thread.
class ReportSession : public QObject {
    Q_OBJECT

public:
    /// Rounds of probes that make a report unless a duration is asked for.
    static constexpr size_t kRounds = 5;

    /// `platform` outlives the session.
    ReportSession(platform::Platform& platform, const ReportOptions& options);
    ~ReportSession() override;

    void start();
    /// Its readings are what is known by now.
    const services::Services& services() const { return m_services; }

Q_SIGNALS:
    /// A word for whoever waits.
    void progress(const QString& text);
    void finished();

private:
    void followGateway(const std::optional<QString>& gateway);
    void check();
    bool isSampled() const;
    void sampled();
    void finish();

    const ReportOptions m_options;
    services::Services m_services;
    std::unique_ptr<base::Timer> m_limit;
    bool m_hasLink = false;
    bool m_isSampled = false;
};

} // namespace netvane::report
