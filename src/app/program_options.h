#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace netvane::app {

/// What the program says instead of starting.
struct Answer {
    QString text;
    int status = 0; ///< what it ends with: 0 for what was asked for, 2 for what makes no sense

    bool operator==(const Answer&) const = default;
};

/// What the command line asks for, or is told when it makes no sense; absent when the program is to
/// start. `arguments` begins with the program's name and still holds the options that Qt takes for
/// itself. Needs no application object, and so no display.
std::optional<Answer> answerTo(const QStringList& arguments);

} // namespace netvane::app
