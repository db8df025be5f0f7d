#pragma once

#include <QUrl>

namespace netvane::platform {

/// The system settings where the user permits Wi-Fi scans. The opener replaces it by the page of
/// the current desktop.
inline const QUrl kPrivacySettingsUrl = QUrl(QStringLiteral(
    "x-apple.systempreferences:com.apple.preference.security?Privacy_LocationServices"));

/// Opens an address in the user's program for it. Main thread.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    /// Addresses other than http, https and `kPrivacySettingsUrl` are refused, since an address may
    /// come from the network. False if it is refused, and if the desktop has no program for it.
    virtual bool openUrl(const QUrl& url) = 0;
};

} // namespace netvane::platform
