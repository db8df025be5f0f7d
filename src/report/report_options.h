#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <variant>

namespace netvane::report {

/// What the command line asks for.
struct ReportOptions {
    std::optional<std::chrono::seconds> duration; ///< absent: as long as five rounds of probes take
    std::optional<QString> output; ///< a file instead of standard output
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
