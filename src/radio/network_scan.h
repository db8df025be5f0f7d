#pragma once

#include "bus/bus_link.h"
#include "platform/network_scanner.h"
#include "radio/scan_path.h"

#include <QSocketNotifier>

#include <memory>
#include <set>
#include <vector>

namespace netvane::radio {

/// What every scan uses. All of it outlives the scans.
struct ScanContext {
    bus::BusLink& systemBus;
    base::Clock& clock;
    base::WorkQueue& queue;
    std::shared_ptr<ScanKernel> kernel;
};

/// One scan, from the request to the networks: asks the services that can own the radio one after
/// another, waits for the kernel's events about a scan that began after the request, and then reads
/// the kernel's scan table. The service's signal alone does not count: it may be about an older
/// scan. Main thread; a child of its owner that deletes itself after it has delivered.
class NetworkScan : public QObject {
public:
    /// From the request to the end of the waiting.
    static constexpr std::chrono::milliseconds kTimeLimit {30'000};
    /// iwd splits a scan into partial scans, each with its own results. If no other one starts
    /// within this time the scan is over, even if the service does not report the end.
    static constexpr std::chrono::milliseconds kSettleTime {3'000};
    /// Whoever owns the radio also looks for the networks that it knows, on their channels alone.
    /// Every adapter has the eleven channels of 2.4 GHz that are allowed everywhere.
    static constexpr size_t kFewestChannels = 11;

    NetworkScan(
        QObject* owner, ScanContext context, platform::NetworkScanner::DeliverNetworks deliver);

private:
    void begin(const base::Result<ScanSetup>& setup);
    void onBusStateChanged();
    void askNext();
    bool isLastAsked() const { return m_asked == m_paths.size(); }
    void takeEvents();
    void takeEvent(const ScanEvent& event);
    void addScanned(const ScanEvent& results);
    void serviceFinished();
    void limitReached();
    void readTable();
    void takeTable(const base::Result<std::vector<BssRecord>>& table);
    void finish();
    void fail(base::FailureKind kind, const QString& text);
    void end(const base::Result<std::vector<platform::NearbyNetwork>>& result);

    const ScanContext m_context;
    platform::NetworkScanner::DeliverNetworks m_deliver;
    ScanSetup m_setup;
    std::unique_ptr<QSocketNotifier> m_events; ///< destroyed before the socket in m_setup
    std::vector<std::unique_ptr<ScanPath>> m_paths; ///< empty until the state of the bus is known
    size_t m_asked = 0;
    std::unique_ptr<base::Timer> m_limitTimer;
    std::unique_ptr<base::Timer> m_settleTimer;
    bool m_isRunning = false; ///< a scan that began after the request
    std::set<std::uint32_t> m_scannedMhz; ///< the channels of such scans that have ended
    bool m_isWhole = false; ///< they are enough
    bool m_isReported = false; ///< the service says that this was its scan
    std::vector<BssRecord> m_table; ///< what all goes have found
    std::optional<base::Failure> m_readFailure;
    std::chrono::steady_clock::time_point m_tableTime;
    int m_readsInFlight = 0;
    bool m_isScanned = false; ///< nothing but reads is waited for
    bool m_isOver = false;
};

} // namespace netvane::radio
