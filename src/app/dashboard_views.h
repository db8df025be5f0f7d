#pragma once

#include "shell/host_window.h"

#include <memory>

namespace netvane::app {

class AppDelegate;

/// Makes the program's windows with their contents, new ones at each call. Called only once all
/// services of the delegate exist. The menu of the delegate works by its shortcuts in each of them.
/// Main thread.
class DashboardViews {
public:
    virtual ~DashboardViews() = default;

    /// Null where there is none to be had, which was said to the user then. A window lives no
    /// longer than this.
    virtual std::unique_ptr<shell::HostWindow> popoverWindow(const AppDelegate& services) = 0;
    /// As `popoverWindow`.
    virtual std::unique_ptr<shell::HostWindow> detailedWindow(const AppDelegate& services) = 0;
};

} // namespace netvane::app
