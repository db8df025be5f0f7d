#pragma once

#include "platform/url_opener.h"

namespace netvane::shell {

/// The desktop's own choice of browser (QDesktopServices: the OpenURI portal, xdg-open), and its
/// page of settings.
class DesktopUrlOpener : public platform::UrlOpener {
public:
    bool openUrl(const QUrl& url) override;
};

} // namespace netvane::shell
