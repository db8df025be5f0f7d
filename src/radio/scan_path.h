#pragma once

#include "base/result.h"
#include "radio/scan_kernel.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>

namespace netvane::base {
class WorkQueue;
} // namespace netvane::base

namespace netvane::radio {

/// Somebody who can have the radio scan: a service that owns it, or the kernel itself. Main thread,
/// never blocks, used once. After the first of the signals comes no other.
class ScanPath : public QObject {
    Q_OBJECT

public:
    /// Asks for one scan of all channels.
    virtual void requestScan(const ScanInterface& interface) = 0;

Q_SIGNALS:
    /// The service is not there or has nothing to do with the interface; nothing was asked of it.
    void notResponsible();
    /// There will be no scan.
    void failed(const netvane::base::Failure& failure);
    /// The scan is over by the service's own word. The kernel has none but its events.
    void finished();
};

// In the order in which they are asked. None of the services is started by being asked.

/// NetworkManager (org.freedesktop.NetworkManager), for devices that it manages.
std::unique_ptr<ScanPath> makeNetworkManagerScanPath(const QDBusConnection& systemBus);
/// iwd (net.connman.iwd), for its devices in station mode.
std::unique_ptr<ScanPath> makeIwdScanPath(const QDBusConnection& systemBus);
/// wpa_supplicant (fi.w1.wpa_supplicant1), for interfaces that it was given.
std::unique_ptr<ScanPath> makeSupplicantScanPath(const QDBusConnection& systemBus);
/// nl80211, which wants CAP_NET_ADMIN.
std::unique_ptr<ScanPath> makeKernelScanPath(
    std::shared_ptr<ScanKernel> kernel, base::WorkQueue& queue);

} // namespace netvane::radio
