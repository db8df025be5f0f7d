#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace netvane::shell {

/// A program with its arguments.
struct SettingsProgram {
    QString executable;
    QStringList arguments;

    bool operator==(const SettingsProgram&) const = default;
};

/// What shows the Wi-Fi settings of a desktop. `desktops` is XDG_CURRENT_DESKTOP, names separated
/// by colons; `find` gives the path of a program, empty when it is not installed. The desktop's own
/// page is preferred, then any that is there; absent when there is none.
std::optional<SettingsProgram> settingsProgram(
    const QString& desktops, const std::function<QString(const QString&)>& find);

} // namespace netvane::shell
