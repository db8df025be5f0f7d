#pragma once

#include <QString>

namespace netvane::services {

/// Tells the user how this copy of the program is updated. It never downloads anything: on Linux
/// the package manager updates programs, or the user who built them.
class UpdaterController {
public:
    /// `executable` is the path of the running program, `dpkgInfo` the folder with dpkg's file
    /// lists of the installed packages.
    explicit UpdaterController(
        const QString& executable, const QString& dpkgInfo = QStringLiteral("/var/lib/dpkg/info"));

    /// One sentence for the user: who updates this copy.
    QString checkForUpdates() const;

private:
    QString m_executable;
    QString m_dpkgInfo;
};

} // namespace netvane::services
