#pragma once

#include "app/hosted_view.h"

namespace netvane::app {

class AppDelegate;

/// Makes the contents of the program's windows, a new one at each call. Called only once all
/// services of the delegate exist. Main thread.
class DashboardViews {
public:
    virtual ~DashboardViews() = default;

    virtual HostedView popoverView(const AppDelegate& services) = 0;
    virtual HostedView detailedWindowView(const AppDelegate& services) = 0;
};

} // namespace netvane::app
