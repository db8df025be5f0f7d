#pragma once

#include "shell/host_window.h"

#include <functional>
#include <memory>

class QMenu;

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::app {

/// Makes the program's windows with their contents, new ones at each call. Outlives the windows.
/// Main thread.
class DashboardViews {
public:
    virtual ~DashboardViews() = default;

    virtual std::unique_ptr<shell::HostWindow> popoverWindow() = 0;
    virtual std::unique_ptr<shell::HostWindow> detailedWindow() = 0;
    /// Opens the window "What is wrong?", or brings it to the front.
    virtual void showVerdict() = 0;
};

/// Makes the views of services that all exist. The shortcuts of `menu` work in each window. Both
/// outlive the views. Null if the views cannot be loaded; the user got a message then.
using MakeViews = std::function<std::unique_ptr<DashboardViews>(
    const services::Services& services, const QMenu& menu)>;

} // namespace netvane::app
