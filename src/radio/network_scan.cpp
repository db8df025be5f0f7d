#include "radio/network_scan.h"

#include "base/background_work.h"
#include "radio/scan_results.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

NetworkScan::NetworkScan(
    QObject* owner, ScanMeans means, platform::NetworkScanner::DeliverNetworks deliver)
    : QObject(owner)
    , m_means(std::move(means))
    , m_deliver(std::move(deliver))
{
    m_limit = m_means.clock.after(kTimeLimit,
        [this] { fail(base::FailureKind::TimedOut, u"The scan took more than 30 seconds"_s); });
    base::runInBackground(
        m_means.queue, this, [kernel = m_means.kernel] { return kernel->prepare(); },
        [this](const base::Result<ScanGround>& ground) { begin(ground); });
}

void NetworkScan::begin(const base::Result<ScanGround>& ground)
{
    if (m_isOver)
        return;
    if (!ground) {
        end(ground.failure());
        return;
    }
    m_ground = ground.value();
    m_events
        = std::make_unique<QSocketNotifier>(m_ground.events->descriptor(), QSocketNotifier::Read);
    connect(m_events.get(), &QSocketNotifier::activated, this, &NetworkScan::takeEvents);
    connect(&m_means.systemBus, &bus::BusLink::stateChanged, this, &NetworkScan::followBus);
    followBus();
}

void NetworkScan::followBus()
{
    const auto state = m_means.systemBus.state();
    if (state == bus::BusLink::State::Connecting || m_isScanned || m_isOver)
        return;
    if (!m_paths.empty()) {
        if (!isLastAsked())
            fail(base::FailureKind::NotAvailable, u"The system bus went away during the scan"_s);
        return;
    }
    if (state == bus::BusLink::State::Connected) {
        const auto& bus = m_means.systemBus.connection();
        m_paths.push_back(makeNetworkManagerScanPath(bus));
        m_paths.push_back(makeIwdScanPath(bus));
        m_paths.push_back(makeSupplicantScanPath(bus));
    }
    m_paths.push_back(makeKernelScanPath(m_means.kernel, m_means.queue));
    askNext();
}

void NetworkScan::askNext()
{
    if (m_isScanned || m_isOver)
        return;
    ScanPath* path = m_paths[m_asked++].get();
    connect(path, &ScanPath::notResponsible, this, &NetworkScan::askNext);
    connect(path, &ScanPath::finished, this, &NetworkScan::finish);
    connect(path, &ScanPath::failed, this,
        [this](const base::Failure& failure) { fail(failure.kind, failure.text); });
    path->requestScan(m_ground.interface);
}

void NetworkScan::takeEvents()
{
    for (const ScanEvent event : m_ground.events->receive(m_ground.interface.index))
        takeEvent(event);
}

/// Another program's scan that was under way before the request counts for nothing.
void NetworkScan::takeEvent(ScanEvent event)
{
    if (m_isScanned || m_isOver)
        return;
    if (event == ScanEvent::Started) {
        m_isUnderWay = true;
        m_settled.reset();
        return;
    }
    if (!std::exchange(m_isUnderWay, false))
        return;
    if (event == ScanEvent::Aborted) {
        fail(base::FailureKind::Interrupted, u"The scan was aborted"_s);
    } else if (isLastAsked()) {
        finish();
    } else {
        readTable(); // iwd has it emptied at the end of the next go
        m_settled = m_means.clock.after(kSettleTime, [this] { finish(); });
    }
}

void NetworkScan::finish()
{
    if (std::exchange(m_isScanned, true) || m_isOver)
        return;
    m_limit.reset();
    readTable();
}

void NetworkScan::readTable()
{
    ++m_readsInFlight;
    base::runInBackground(
        m_means.queue, this,
        [kernel = m_means.kernel, interface = m_ground.interface] {
            return kernel->readTable(interface);
        },
        [this](const base::Result<std::vector<BssRecord>>& table) { takeTable(table); });
}

void NetworkScan::takeTable(const base::Result<std::vector<BssRecord>>& table)
{
    --m_readsInFlight;
    if (table) {
        const auto now = m_means.clock.monotonicNow();
        const auto passed = now - std::exchange(m_tableTime, now);
        addLater(
            m_table, table.value(), std::chrono::duration_cast<std::chrono::milliseconds>(passed));
    } else
        m_readFailure = table.failure();
    if (!m_isScanned || m_readsInFlight > 0)
        return;
    if (m_table.empty() && m_readFailure)
        end(base::Failure {base::FailureKind::Other,
            u"The results of the scan cannot be read: "_s + m_readFailure->text});
    else
        end(nearbyNetworks(m_table));
}

void NetworkScan::fail(base::FailureKind kind, const QString& text)
{
    if (!m_isScanned) // with the scan done nobody else is needed
        end(base::Failure {kind, text});
}

void NetworkScan::end(const base::Result<std::vector<platform::NearbyNetwork>>& result)
{
    if (std::exchange(m_isOver, true))
        return;
    m_limit.reset();
    m_settled.reset();
    if (m_events)
        m_events->setEnabled(false);
    // Later, for whoever gets it may let this object's owner go.
    const auto deliver = [this, result] {
        deleteLater();
        std::exchange(m_deliver, {})(result);
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}

} // namespace netvane::radio
