#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace netvane::app {

/// The text that the program prints instead of starting.
struct Answer {
    QString text;
    int status = 0; ///< the exit status: 0 for a requested text, 2 for a wrong command line

    bool operator==(const Answer&) const = default;
};

struct CommandLine {
    std::optional<Answer> answer; ///< absent if the program is to start
    QString action; ///< as in `platform::StartRequest`
};

/// `arguments` begins with the program's name and still contains the options of Qt. Needs no
/// application object, and so no display.
CommandLine readCommandLine(const QStringList& arguments);

} // namespace netvane::app
