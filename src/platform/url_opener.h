#pragma once

#include <QUrl>

namespace netvane::platform {

/// Where the system lets the user say who may look at the air; each desktop has its own page for
/// it, which the opener finds.
inline const QUrl kPrivacySettingsUrl = QUrl(QStringLiteral(
    "x-apple.systempreferences:com.apple.preference.security?Privacy_LocationServices"));

/// Shows an address in the user's own program for it. Main thread.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    /// Addresses other than http, https and `kPrivacySettingsUrl` are refused: what is opened may
    /// come from the network. False when refused, and when the desktop has nothing to open it with.
    virtual bool openUrl(const QUrl& url) = 0;
};

} // namespace netvane::platform
