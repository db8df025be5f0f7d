#include "services/updater_controller.h"

#include <QDir>
#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace netvane::services {
namespace {

/// Whether the package's list of files contains the program. dpkg writes `netvane.list` for the
/// package `netvane`.
bool belongsToPackage(const QString& executable, const QString& dpkgInfo)
{
    QFile list(QDir(dpkgInfo).filePath(u"netvane.list"_s));
    return list.open(QIODevice::ReadOnly)
        && list.readAll().split('\n').contains(QFile::encodeName(executable));
}

} // namespace

UpdaterController::UpdaterController(const QString& executable, const QString& dpkgInfo)
    : m_executable(executable)
    , m_dpkgInfo(dpkgInfo)
{
}

QString UpdaterController::checkForUpdates() const
{
    const QString version = u"This is Netvane "_s + QStringLiteral(NETVANE_VERSION);
    if (QFile::exists(u"/.flatpak-info"_s))
        return version
            + u". Your software centre updates it with the other Flatpak applications."_s;
    if (belongsToPackage(m_executable, m_dpkgInfo))
        return version + u". It is updated together with the system's other packages."_s;
    return version
        + u", built on this machine. To update it, fetch its source anew and build it again."_s;
}

} // namespace netvane::services
