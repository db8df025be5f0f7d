#include "app/views_library.h"

#include "windows/quick_views.h"

/// The one way into the library of views. It is built with the program that loads it, so that the
/// two agree on everything else.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" netvane::app::DashboardViews* netvane_make_views(
    const netvane::services::Services& services, const QMenu& menu,
    netvane::app::NotificationCenter& notifications)
{
    return netvane::windows::makeQuickViews(services, menu, notifications).release();
}
