#pragma once

#include "app/dashboard_views.h"
#include "base/file_descriptor.h"

#include <QPointer>
#include <QString>

class QMessageBox;

namespace netvane::app {

/// The library that draws the windows. It is loaded with the first of them: most sessions never
/// open one, and Qt Quick is a sixth of what the program would hold. Main thread.
class ViewsLibrary {
public:
    /// The file is opened here and read later, so that an update of the program, which puts another
    /// file in its place, leaves this one with the library that it was built with.
    explicit ViewsLibrary(const QString& path);

    /// That of the installed program, or where it was built.
    static QString defaultPath();

    /// As `MakeViews`; loads the library first.
    std::unique_ptr<DashboardViews> makeViews(
        const services::Services& services, const QMenu& menu, NotificationCenter& notifications);

private:
    void sayThatThereIsNone(const QString& reason);

    const QString m_path;
    const base::FileDescriptor m_file;
    QPointer<QMessageBox> m_message; ///< while it is open
};

/// What the library has under the name kMakeViews. The caller owns the views.
using MakeLoadedViews = DashboardViews*(
    const services::Services& services, const QMenu& menu, NotificationCenter& notifications);
inline constexpr const char* kMakeViews = "netvane_make_views";

} // namespace netvane::app
