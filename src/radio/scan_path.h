#pragma once

#include "base/result.h"
#include "radio/scan_kernel.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <vector>

namespace netvane::base {
class WorkQueue;
} // namespace netvane::base

namespace netvane::radio {

/// One way to request a scan: through a service that owns the radio, or from the kernel itself.
/// Main thread; never blocks; used once. At most one of the signals is emitted.
class ScanPath : public QObject {
    Q_OBJECT

public:
    /// Requests one scan of all channels.
    virtual void requestScan(const ScanInterface& interface) = 0;
    /// The service that has not said yet that it will scan; empty once it has.
    virtual QString silentService() const { return {}; }

Q_SIGNALS:
    /// The service is not running or does not own the interface. No scan was requested.
    void notResponsible();
    /// There will be no scan.
    void failed(const netvane::base::Failure& failure);
    /// The service reported the end of the scan. The kernel path reports it by scan events only.
    void finished();
};

/// The services that can own the radio, in the order in which they are asked: NetworkManager
/// (org.freedesktop.NetworkManager) for devices that it manages, iwd (net.connman.iwd) for devices
/// in station mode, wpa_supplicant (fi.w1.wpa_supplicant1) for interfaces that it controls. Asking
/// starts none of them.
std::vector<std::unique_ptr<ScanPath>> makeServiceScanPaths(const QDBusConnection& systemBus);
/// nl80211, which requires CAP_NET_ADMIN. Asked last.
std::unique_ptr<ScanPath> makeKernelScanPath(
    std::shared_ptr<ScanKernel> kernel, base::WorkQueue& queue);

} // namespace netvane::radio
