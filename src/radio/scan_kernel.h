#pragma once

#include "base/result.h"
#include "radio/nl80211_messages.h"
#include "radio/scan_events.h"

#include <QString>

#include <memory>

namespace netvane::radio {

/// The interface that a scan is made with.
struct ScanInterface {
    std::uint32_t index = 0;
    QString name;
};

/// Where a scan begins: what it is made with, and how one hears of its end.
struct ScanGround {
    ScanInterface interface;
    std::shared_ptr<ScanEvents> events;
};

/// The kernel's part in a scan. May wait for a driver, within a bound: for background threads,
/// several at once. A failure of the kind NotFound means that the interface is not there.
class ScanKernel {
public:
    virtual ~ScanKernel() = default;

    /// Listens for events and finds the default interface, whose radio is on.
    virtual base::Result<ScanGround> prepare() = 0;
    /// Has the driver scan by itself; the events tell the end.
    virtual base::Result<std::monostate> trigger(const ScanInterface& interface) = 0;
    /// The table of networks as it stands.
    virtual base::Result<std::vector<BssRecord>> readTable(const ScanInterface& interface) = 0;
};

/// That of nl80211. `sysfsRoot` is where sysfs(5) stands.
class Nl80211ScanKernel : public ScanKernel {
public:
    explicit Nl80211ScanKernel(QString sysfsRoot = QStringLiteral("/sys"))
        : m_sysfsRoot(std::move(sysfsRoot))
    {
    }

    base::Result<ScanGround> prepare() override;
    base::Result<std::monostate> trigger(const ScanInterface& interface) override;
    base::Result<std::vector<BssRecord>> readTable(const ScanInterface& interface) override;

private:
    const QString m_sysfsRoot;
};

} // namespace netvane::radio
