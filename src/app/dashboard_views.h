#pragma once

#include "shell/host_window.h"

#include <functional>
#include <memory>

class QMenu;

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::app {

class NotificationCenter;

/// Makes the program's windows with their contents, new ones at each call. Outlives the windows.
/// Main thread.
class DashboardViews {
public:
    virtual ~DashboardViews() = default;

    virtual std::unique_ptr<shell::HostWindow> popoverWindow() = 0;
    virtual std::unique_ptr<shell::HostWindow> detailedWindow() = 0;
    virtual std::unique_ptr<shell::HostWindow> verdictWindow() = 0;
    virtual std::unique_ptr<shell::HostWindow> timeLineWindow() = 0;
    virtual std::unique_ptr<shell::HostWindow> airWindow() = 0;
};

/// Makes the views of services that all exist. The shortcuts of `menu` work in each window, and
/// `notifications` gets what the user asks for in them. All outlive the views. Null if the views
/// cannot be loaded; the user got a message then.
using MakeViews = std::function<std::unique_ptr<DashboardViews>(
    const services::Services& services, const QMenu& menu, NotificationCenter& notifications)>;

} // namespace netvane::app
