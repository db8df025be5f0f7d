#pragma once

#include "base/result.h"
#include "netlink/generic_events.h"
#include "radio/nl80211_messages.h"

#include <QString>

#include <memory>

namespace netvane::radio {

class InterfaceChoice;

/// The interface that scans.
struct ScanInterface {
    std::uint32_t index = 0;
    QString name;
};

/// What a scan starts with: the interface, and the events that report its end.
struct ScanSetup {
    ScanInterface interface;
    std::shared_ptr<netlink::GenericEvents> events;
};

/// The kernel operations of a scan. May wait for a driver, within a bound: for background threads,
/// several at once. A failure of the kind NotFound context that the interface is not there.
class ScanKernel {
public:
    virtual ~ScanKernel() = default;

    /// Listens for events and finds the interface to use, whose radio is on.
    virtual base::Result<ScanSetup> prepare() = 0;
    /// Starts a scan in the driver; the events report its end.
    virtual base::Result<std::monostate> trigger(const ScanInterface& interface) = 0;
    /// Reads the kernel's scan table.
    virtual base::Result<std::vector<BssRecord>> readTable(const ScanInterface& interface) = 0;
};

/// By nl80211.
class Nl80211ScanKernel : public ScanKernel {
public:
    explicit Nl80211ScanKernel(std::shared_ptr<InterfaceChoice> choice)
        : m_choice(std::move(choice))
    {
    }

    base::Result<ScanSetup> prepare() override;
    base::Result<std::monostate> trigger(const ScanInterface& interface) override;
    base::Result<std::vector<BssRecord>> readTable(const ScanInterface& interface) override;

private:
    const std::shared_ptr<InterfaceChoice> m_choice;
};

} // namespace netvane::radio
