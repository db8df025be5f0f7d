#include "app/loaded_views.h"
#include "windows/program_views.h"

/// The one way into the library of views. It is built with the program that loads it, so that the
/// two agree on everything else.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" netvane::app::DashboardViews* netvane_make_views(netvane::platform::Platform& platform)
{
    return new netvane::windows::ProgramViews(platform);
}
