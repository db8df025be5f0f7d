#pragma once

#include <QUrl>
#include <QVariantMap>

#include <memory>

namespace netvane::windows {

/// What fills a window: a QML file, and the objects that it shows.
struct HostedView {
    QUrl source;
    QVariantMap properties; ///< the required ones of its root
    std::shared_ptr<void> state; ///< whatever has to live as long as the view; goes after it
};

} // namespace netvane::windows
