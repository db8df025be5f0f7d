#pragma once

#include "app/dashboard_views.h"
#include "timeline/source.h"

/// The program's windows as Qt Quick draws them: the views put a state and its QML file into a
/// `QuickWindow`. The room joins what the program knows of windows with what the states show. In
/// the desktop program it is a library of its own (app/views_library.h).
namespace netvane::windows {

/// The windows of the program; as `app::MakeViews`. Main thread.
std::unique_ptr<app::DashboardViews> makeQuickViews(
    const services::Services& services, const QMenu& menu, app::NotificationCenter& notifications);

/// The same with a history of its own.
std::unique_ptr<app::DashboardViews> makeQuickViewsWith(const services::Services& services,
    const QMenu& menu, app::NotificationCenter& notifications,
    std::shared_ptr<timeline::Source> history);

} // namespace netvane::windows
