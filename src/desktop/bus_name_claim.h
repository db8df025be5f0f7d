#pragma once

#include "base/clock.h"
#include "bus/bus_link.h"
#include "platform/instance_claim.h"

#include <QVariantMap>

namespace netvane::desktop {

/// What other programs see of the running copy.
class ApplicationObject final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public Q_SLOTS:
    // The interface's own spelling.
    // NOLINTNEXTLINE(readability-identifier-naming)
    Q_SCRIPTABLE void Activate(const QVariantMap&) { Q_EMIT activated(); }

Q_SIGNALS:
    void activated();
};

/// The running copy owns `org.netvane.Netvane` on the session bus
/// (org.freedesktop.DBus.RequestName, without queueing for it). Without a session bus every copy
/// counts as the first. The name is claimed again when the bus is back. A later copy calls Activate
/// of the first one's `org.freedesktop.Application` at /org/netvane/Netvane, as launchers of
/// desktop entries do, and then reports that it is not the first.
class BusNameClaim : public platform::InstanceClaim {
    Q_OBJECT

public:
    BusNameClaim(bus::BusLink& sessionBus, base::Clock& clock);

    void claim() override;

private:
    void followSessionBus();
    void requestName();
    void activateOther();
    void decide(bool isFirst);

    bus::BusLink& m_sessionBus;
    base::Clock& m_clock;
    ApplicationObject m_object;
    std::unique_ptr<base::Timer> m_limit;
    bool m_isClaiming = false;
    bool m_isDecided = false;
};

} // namespace netvane::desktop
