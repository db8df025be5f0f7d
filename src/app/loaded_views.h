#pragma once

#include "app/dashboard_views.h"
#include "base/file_descriptor.h"

#include <QPointer>
#include <QString>

class QMessageBox;

namespace netvane::platform {
struct Platform;
} // namespace netvane::platform

namespace netvane::app {

/// The program's windows, whose code is a library that is loaded with the first of them: most
/// sessions never open one, and Qt Quick is a sixth of what the program would hold. Main thread.
class LoadedViews final : public DashboardViews {
public:
    /// The file is opened here and read later, so that an update of the program, which puts another
    /// in its place, leaves this one with the library that it was built with. `platform` outlives
    /// the views.
    LoadedViews(platform::Platform& platform, const QString& path);

    /// That of the installed program, or where it was built.
    static QString defaultPath();

    std::unique_ptr<shell::HostWindow> popoverWindow(const AppDelegate& services) override;
    std::unique_ptr<shell::HostWindow> detailedWindow(const AppDelegate& services) override;

private:
    bool load();
    void sayThatThereIsNone(const QString& reason);

    platform::Platform& m_platform;
    const QString m_path;
    const base::FileDescriptor m_file;
    std::unique_ptr<DashboardViews> m_views; ///< null until they are loaded
    QPointer<QMessageBox> m_message; ///< while it is open
};

/// What the library has under the name kMakeViews. The caller takes the views over.
using MakeViews = DashboardViews*(platform::Platform& platform);
inline constexpr const char* kMakeViews = "netvane_make_views";

} // namespace netvane::app
