#pragma once

#include <QObject>

namespace netvane::platform {

/// Tells when interfaces, addresses or default routes may have changed. Main thread.
class RouteMonitor : public QObject {
    Q_OBJECT

Q_SIGNALS:
    /// Once for several changes that come together, about half a second after the first of them.
    /// Costs nothing in between.
    void routesChanged();
};

} // namespace netvane::platform
