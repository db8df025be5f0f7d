#pragma once

#include "platform/clock.h"
#include "platform/instance_claim.h"
#include "platform/linux/bus_link.h"

namespace netvane::platform {

/// The running copy owns `org.netvane.Netvane` on the session bus
/// (org.freedesktop.DBus.RequestName, without queueing for it). Without a session bus every copy
/// counts as the first. The name is claimed again when a bus that went away is back.
class BusNameClaim : public InstanceClaim {
    Q_OBJECT

public:
    BusNameClaim(BusLink& sessionBus, Clock& clock);

    void claim() override;

private:
    void followSessionBus();
    void requestName();
    void decide(bool isFirst);

    BusLink& m_sessionBus;
    Clock& m_clock;
    std::unique_ptr<Timer> m_limit;
    bool m_isClaiming = false;
    bool m_isDecided = false;
};

} // namespace netvane::platform
