#pragma once

class QUrl;

namespace netvane::platform {

/// Shows an address in the user's own program for it. Main thread.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    /// Addresses other than http and https are refused: what is opened may come from the network.
    /// False when refused, and when the desktop has nothing to open it with.
    virtual bool openUrl(const QUrl& url) = 0;
};

} // namespace netvane::platform
