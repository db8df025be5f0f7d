#pragma once

#include "base/clock.h"
#include "bus/bus_link.h"
#include "desktop/instance_lock.h"
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
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData)
    {
        Q_EMIT activated({}, platformData);
    }
    // NOLINTNEXTLINE(readability-identifier-naming)
    Q_SCRIPTABLE void ActivateAction(
        const QString& name, const QVariantList& /*parameter*/, const QVariantMap& platformData)
    {
        Q_EMIT activated(name, platformData);
    }

Q_SIGNALS:
    void activated(const QString& action, const QVariantMap& platformData);
};

/// The running copy has the lock of its display and owns `org.netvane.Netvane` on the session bus
/// (org.freedesktop.DBus.RequestName, without queueing for it). The name is claimed again when the
/// bus is back. A later copy finds the lock taken and tells its owner. On another display of the
/// same bus it finds the name taken and calls Activate or ActivateAction of
/// `org.freedesktop.Application` at /org/netvane/Netvane, as launchers of desktop entries do. Then
/// it reports that it is not the first. Without a bus and a runtime folder every copy counts as the
/// first.
class BusNameClaim : public platform::InstanceClaim {
    Q_OBJECT

public:
    BusNameClaim(bus::BusLink& sessionBus, base::Clock& clock);

    /// What the bus shows of this program, for adaptors of further interfaces.
    QObject& object() { return m_object; }
    void claim(const QString& action) override;

private:
    void followSessionBus();
    void requestName();
    void activateOther();
    void decide(bool isFirst);

    bus::BusLink& m_sessionBus;
    base::Clock& m_clock;
    ApplicationObject m_object;
    InstanceLock m_lock;
    QString m_action; ///< that of this start
    std::unique_ptr<base::Timer> m_limit;
    bool m_isClaiming = false;
    bool m_isDecided = false;
};

} // namespace netvane::desktop
