#include "shell/desktop_url_opener.h"

#include "base/log.h"
#include "shell/settings_program.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.shell")

/// The answer to a press that can lead nowhere.
void explainWhereToLook()
{
    auto* box = new QMessageBox(QMessageBox::Information, u"Netvane"_s,
        u"This desktop has no settings page that Netvane knows. Whether networks may be scanned is"
        u" decided by NetworkManager; ask whoever looks after this computer."_s);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool openSettings()
{
    const auto program = settingsProgram(qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
        [](const QString& name) { return QStandardPaths::findExecutable(name); });
    if (program && QProcess::startDetached(program->executable, program->arguments))
        return true;
    base::log(logCategory(), u"Netvane: No settings page to open on this desktop"_s);
    explainWhereToLook();
    return false;
}

} // namespace

bool DesktopUrlOpener::openUrl(const QUrl& url)
{
    if (url == platform::kPrivacySettingsUrl)
        return openSettings();
    const bool isWeb = url.scheme() == u"https"_s || url.scheme() == u"http"_s;
    return isWeb && url.isValid() && !url.host().isEmpty() && QDesktopServices::openUrl(url);
}

} // namespace netvane::shell
