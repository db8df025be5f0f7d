#pragma once

#include <QString>

namespace netvane::services {

/// Knows how this copy of the program is updated. It never downloads anything: on Linux the package
/// manager does, or whoever built the program.
class UpdaterController {
public:
    /// `executable` is the path of the running program, `dpkgInfo` where dpkg keeps the file lists
    /// of installed packages.
    explicit UpdaterController(
        const QString& executable, const QString& dpkgInfo = QStringLiteral("/var/lib/dpkg/info"));

    /// One sentence for the user: who updates this copy.
    QString checkForUpdates() const;

private:
    QString m_executable;
    QString m_dpkgInfo;
};

} // namespace netvane::services
