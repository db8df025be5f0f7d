#include "radio/network_scan.h"

#include "base/background_work.h"
#include "radio/scan_results.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {

NetworkScan::NetworkScan(
    QObject* owner, ScanContext context, platform::NetworkScanner::DeliverNetworks deliver)
    : QObject(owner)
    , m_context(std::move(context))
    , m_deliver(std::move(deliver))
{
    m_limitTimer = m_context.clock.after(kTimeLimit, [this] { limitReached(); });
    base::runInBackground(
        m_context.queue, this, [kernel = m_context.kernel] { return kernel->prepare(); },
        [this](const base::Result<ScanSetup>& setup) { begin(setup); });
}

void NetworkScan::begin(const base::Result<ScanSetup>& setup)
{
    if (m_isOver)
        return;
    if (!setup) {
        end(setup.failure());
        return;
    }
    m_setup = setup.value();
    m_events
        = std::make_unique<QSocketNotifier>(m_setup.events->descriptor(), QSocketNotifier::Read);
    connect(m_events.get(), &QSocketNotifier::activated, this, &NetworkScan::takeEvents);
    connect(
        &m_context.systemBus, &bus::BusLink::stateChanged, this, &NetworkScan::onBusStateChanged);
    onBusStateChanged();
}

void NetworkScan::onBusStateChanged()
{
    const auto state = m_context.systemBus.state();
    if (state == bus::BusLink::State::Connecting || m_isScanned || m_isOver)
        return;
    if (!m_paths.empty()) {
        if (!isLastAsked())
            fail(base::FailureKind::NotAvailable, u"The system bus went away during the scan"_s);
        return;
    }
    if (state == bus::BusLink::State::Connected)
        m_paths = makeServiceScanPaths(m_context.systemBus.connection());
    m_paths.push_back(makeKernelScanPath(m_context.kernel, m_context.queue));
    askNext();
}

void NetworkScan::askNext()
{
    if (m_isScanned || m_isOver)
        return;
    ScanPath* path = m_paths[m_asked++].get();
    connect(path, &ScanPath::notResponsible, this, &NetworkScan::askNext);
    connect(path, &ScanPath::finished, this, &NetworkScan::serviceFinished);
    connect(path, &ScanPath::failed, this,
        [this](const base::Failure& failure) { fail(failure.kind, failure.text); });
    path->requestScan(m_setup.interface);
}

void NetworkScan::takeEvents()
{
    m_setup.events->receive([this](const netlink::GenericMessage& message) {
        const auto event = scanEvent(message);
        if (event && event->interfaceIndex == m_setup.interface.index)
            takeEvent(*event);
    });
}

/// Ignores a scan that was already running before the request.
void NetworkScan::takeEvent(const ScanEvent& event)
{
    if (m_isScanned || m_isOver)
        return;
    if (event.kind == ScanEvent::Kind::Started) {
        m_isRunning = true;
        m_settleTimer.reset();
        return;
    }
    if (!std::exchange(m_isRunning, false))
        return;
    const bool isPartial = event.frequenciesMhz && event.frequenciesMhz->size() < kFewestChannels;
    if (event.kind == ScanEvent::Kind::ResultsReady) {
        addScanned(event);
    } else if (!isPartial) {
        fail(base::FailureKind::Interrupted, u"The scan was aborted"_s);
        return;
    }
    if (isLastAsked()) {
        finish();
        return;
    }
    readTable(); // the end of the next partial scan of iwd empties it
    if (m_isWhole)
        m_settleTimer = m_context.clock.after(kSettleTime, [this] { finish(); });
}

void NetworkScan::addScanned(const ScanEvent& results)
{
    if (results.frequenciesMhz)
        m_scannedMhz.insert(results.frequenciesMhz->begin(), results.frequenciesMhz->end());
    if (!results.frequenciesMhz || m_scannedMhz.size() >= kFewestChannels)
        m_isWhole = true;
}

void NetworkScan::serviceFinished()
{
    takeEvents(); // the kernel's own word came first
    m_isReported = !m_scannedMhz.empty();
    if (m_isWhole)
        finish();
}

/// A service may be set up to scan few channels: then what it scanned is all that there will be.
void NetworkScan::limitReached()
{
    if (m_isReported) {
        finish();
        return;
    }
    const QString silent = m_asked > 0 ? m_paths[m_asked - 1]->silentService() : QString();
    QString text = u"No scan within 30 seconds. A connection may be in progress"_s;
    if (m_isRunning)
        text = u"The scan took more than 30 seconds"_s;
    else if (!silent.isEmpty())
        text = silent + u" did not answer within 30 seconds"_s;
    fail(base::FailureKind::TimedOut, text);
}

void NetworkScan::finish()
{
    if (std::exchange(m_isScanned, true) || m_isOver)
        return;
    m_limitTimer.reset();
    readTable();
}

void NetworkScan::readTable()
{
    ++m_readsInFlight;
    base::runInBackground(
        m_context.queue, this,
        [kernel = m_context.kernel, interface = m_setup.interface] {
            return kernel->readTable(interface);
        },
        [this](const base::Result<std::vector<BssRecord>>& table) { takeTable(table); });
}

void NetworkScan::takeTable(const base::Result<std::vector<BssRecord>>& table)
{
    --m_readsInFlight;
    if (table) {
        const auto now = m_context.clock.monotonicNow();
        const auto elapsed = now - std::exchange(m_tableTime, now);
        addNewerTable(
            m_table, table.value(), std::chrono::duration_cast<std::chrono::milliseconds>(elapsed));
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
    if (m_isWhole || m_isScanned) // only the kernel's table is needed then
        finish();
    else
        end(base::Failure {kind, text});
}

void NetworkScan::end(const base::Result<std::vector<platform::NearbyNetwork>>& result)
{
    if (std::exchange(m_isOver, true))
        return;
    m_limitTimer.reset();
    m_settleTimer.reset();
    if (m_events)
        m_events->setEnabled(false);
    // Later, because the receiver may destroy this object's owner.
    const auto deliver = [this, result] {
        deleteLater();
        std::exchange(m_deliver, {})(result);
    };
    QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
}

} // namespace netvane::radio
