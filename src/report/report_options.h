#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <variant>

namespace netvane::report {

/// What is printed.
enum class Outlet {
    Report, ///< Markdown
    Verdict, ///< for people, with an exit status for scripts
    Json, ///< one object
    Watch, ///< an object a line, at the start and at each change
    Prometheus,
    Air, ///< what the radio and the access points tell
    Record, ///< the messages of nl80211, to `file`
    History, ///< of the time before now
    Trace, ///< the routers on the way to `traceHost`
};

/// What the command line asks for.
struct ReportOptions {
    Outlet outlet = Outlet::Report;
    std::optional<std::chrono::seconds> duration; ///< absent: as the outlet needs
    std::optional<std::chrono::seconds> interval; ///< also print so often; only when watching
    std::optional<QString> output; ///< a file instead of standard output
    QString traceHost;
    QString file; ///< to record to, or the recording that takes the place of the radio
    std::chrono::seconds history {}; ///< how far back
    bool asJson = false; ///< a trace, the history or the air
    bool asCsv = false; ///< the history
    bool redact = false;
    bool speedTest = false;

    bool operator==(const ReportOptions&) const = default;
};

/// A text for the user in place of a report, and with which status the program ends after it.
struct Message {
    QString text;
    int status = 0; ///< 0 for what was asked for, 2 for a command line that makes no sense
};

/// `arguments` begins with the program's name.
std::variant<ReportOptions, Message> parseOptions(const QStringList& arguments);

} // namespace netvane::report
