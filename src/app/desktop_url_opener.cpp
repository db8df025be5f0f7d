#include "app/desktop_url_opener.h"

#include <QDesktopServices>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {

bool DesktopUrlOpener::openUrl(const QUrl& url)
{
    const bool isWeb = url.scheme() == u"https"_s || url.scheme() == u"http"_s;
    return isWeb && url.isValid() && !url.host().isEmpty() && QDesktopServices::openUrl(url);
}

} // namespace netvane::app
