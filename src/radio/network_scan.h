#pragma once

#include "bus/bus_link.h"
#include "platform/network_scanner.h"
#include "radio/scan_path.h"

#include <QSocketNotifier>

#include <memory>
#include <vector>

namespace netvane::radio {

/// What every scan wants; all of it outlives the scans.
struct ScanMeans {
    bus::BusLink& systemBus;
    base::Clock& clock;
    base::WorkQueue& queue;
    std::shared_ptr<ScanKernel> kernel;
};

/// One scan, from the request to the networks: asks whoever owns the radio, waits for that
/// service's word or the kernel's events, and then reads the kernel's table. Main thread; a child
/// of its owner, that destroys itself after it has delivered.
class NetworkScan : public QObject {
public:
    /// From the request to the end of the waiting.
    static constexpr std::chrono::milliseconds kTimeLimit {30'000};
    /// A service may scan in several goes, each with its own results. After so long without another
    /// go the scan is over, even if the service never says so.
    static constexpr std::chrono::milliseconds kSettleTime {3'000};

    NetworkScan(QObject* owner, ScanMeans means, platform::NetworkScanner::DeliverNetworks deliver);

private:
    void begin(const base::Result<ScanGround>& ground);
    void followBus();
    void askNext();
    bool isLastAsked() const { return m_asked == m_paths.size(); }
    void takeEvents();
    void takeEvent(ScanEvent event);
    void readTable();
    void takeTable(const base::Result<std::vector<BssRecord>>& table);
    void finish();
    void fail(base::FailureKind kind, const QString& text);
    void end(const base::Result<std::vector<platform::NearbyNetwork>>& result);

    const ScanMeans m_means;
    platform::NetworkScanner::DeliverNetworks m_deliver;
    ScanGround m_ground;
    std::unique_ptr<QSocketNotifier> m_events; ///< goes before the socket of the ground
    std::vector<std::unique_ptr<ScanPath>> m_paths; ///< empty until the state of the bus is known
    size_t m_asked = 0;
    std::unique_ptr<base::Timer> m_limit;
    std::unique_ptr<base::Timer> m_settled;
    bool m_isUnderWay = false; ///< a scan that began after the request
    std::vector<BssRecord> m_table; ///< what all goes have found
    std::optional<base::Failure> m_readFailure;
    std::chrono::steady_clock::time_point m_tableTime;
    int m_readsInFlight = 0;
    bool m_isScanned = false; ///< nothing but reads is waited for
    bool m_isOver = false;
};

} // namespace netvane::radio
