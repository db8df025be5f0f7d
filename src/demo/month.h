#pragma once

#include "app/dashboard_views.h"
#include "timeline/source.h"

#include <memory>

namespace netvane::demo {

/// An invented month: a home whose line to the provider is slow on the evenings of weekdays, with
/// nights in which the computer sleeps, a few outages, roams and scans. The same for the same seed
/// and end.
struct Month {
    std::vector<timeline::Minute> minutes;
    std::vector<timeline::Mark> marks;
    std::vector<timeline::Outage> outages;
    std::vector<timeline::RoundTrip> trips; ///< of the last two hours
    std::vector<timeline::RadioPause> pauses;
};
Month month(timeline::Milliseconds end, unsigned seed, int minutes = 30 * 24 * 60);

/// A history in memory that ends now, and that the user can have forgotten.
std::shared_ptr<timeline::Source> monthSource(Month month, const QString& network);

/// The program's windows with a month that ends when the first of them is made.
std::unique_ptr<app::DashboardViews> viewsWithMonth(
    const services::Services& services, const QMenu& menu, app::NotificationCenter& notifications);

} // namespace netvane::demo
