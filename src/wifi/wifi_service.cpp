#include "wifi/wifi_service.h"

#include "base/background_work.h"
#include "base/log.h"
#include "base/publish.h"
#include "wifi/location_permission_service.h"

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace netvane::wifi {

/// What a pass found.
struct LinkSample {
    std::shared_ptr<platform::WiFiInterface> interface; ///< null: none is there
    std::optional<platform::LinkReading> reading {}; ///< absent: its radio is off
    std::chrono::system_clock::time_point readAt {};
};

namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.wifi")

constexpr int kPassesPerLogLine = 10;
// How long a link that is gone may take to come back. Less than the passes are apart, so that the
// next one decides.
constexpr std::chrono::milliseconds kReturn {3'000};
constexpr std::chrono::milliseconds kReturnAfterSleep {12'000};

const QString kNoClient = u"Unable to initialize Wi-Fi client"_s;
const QString kNoInterface = u"No Wi-Fi interface available"_s;
const QString kRadioOff = u"Wi-Fi is turned off"_s;
const QString kNoName = u"Unable to read Wi-Fi network name. Please check your Wi-Fi connection."_s;
const QString kNoPermission = u"Location permission required to access Wi-Fi network name."_s;

WiFiFrequency frequencyOf(std::optional<platform::ChannelBand> band)
{
    if (!band)
        return WiFiFrequency::unknown;
    if (*band == platform::ChannelBand::TwoGHz)
        return WiFiFrequency::twoPointFourGHz;
    return *band == platform::ChannelBand::SixGHz ? WiFiFrequency::sixGHz : WiFiFrequency::fiveGHz;
}

std::optional<int> wholeMbps(std::optional<double> rate)
{
    // Written so that "not a number" is not told either.
    if (!rate || !(*rate > 0) || !(*rate < double(std::numeric_limits<int>::max())))
        return {};
    return int(*rate);
}

std::optional<int> unlessZero(std::optional<int> dbm)
{
    return dbm == 0 ? std::nullopt : dbm;
}

/// Keeps to an interface that has a link. When it is lost, or the interface was unplugged or
/// renamed, another one may have a link, so the client is asked before anything is said.
LinkSample readSample(platform::WiFiClient* client,
    const std::shared_ptr<platform::WiFiInterface>& linked, const base::Clock& clock)
{
    if (linked) {
        if (const auto reading = linked->readLink(); reading && reading->ssid)
            return {linked, reading, clock.now()};
    }
    const auto interfaces
        = client ? client->interfaces() : std::vector<std::shared_ptr<platform::WiFiInterface>>();
    if (interfaces.empty())
        return {};
    const auto& first = interfaces.front();
    if (!first->powerOn())
        return {.interface = first};
    const auto reading = first->readLink();
    return reading ? LinkSample {first, reading, clock.now()} : LinkSample {};
}

} // namespace

WiFiInfo makeWiFiInfo(
    const platform::LinkReading& reading, std::chrono::system_clock::time_point timestamp)
{
    return {
        .timestamp = timestamp,
        .ssid = reading.ssid,
        .frequency = frequencyOf(reading.band),
        .linkRate = wholeMbps(reading.transmitRateMbps),
        .signalStrength = unlessZero(reading.signalDbm),
        .noise = unlessZero(reading.noiseDbm),
        .interfaceName = reading.interfaceName,
    };
}

WiFiService::WiFiService(
    std::shared_ptr<platform::WiFiClient> client, base::Clock& clock, base::WorkQueue& queue)
    : m_wifiClient(std::move(client))
    , m_clock(clock)
    , m_queue(queue)
{
    if (!m_wifiClient)
        setErrorMessage(kNoClient);
    startMonitoring();
}

WiFiService::~WiFiService()
{
    stopMonitoring();
}

void WiFiService::startMonitoring()
{
    if (m_updateTimer) {
        base::log(
            logCategory(), u"WiFiService: startMonitoring() called but timer already exists"_s);
        return;
    }
    updateWiFiInfo();
    m_updateTimer = m_clock.repeat(updateInterval, [this] { beginPass(base::Delivery::Batched); });
}

void WiFiService::stopMonitoring()
{
    m_updateTimer.reset();
}

void WiFiService::setLocationPermissionService(LocationPermissionService& service)
{
    m_locationPermissionService = &service;
    // Queued, the present value included: whoever changes the permission is not in the middle of a
    // pass of ours.
    connect(&service, &LocationPermissionService::isAuthorizedChanged, this,
        &WiFiService::followPermission, Qt::QueuedConnection);
    QMetaObject::invokeMethod(this, &WiFiService::followPermission, Qt::QueuedConnection);
}

void WiFiService::followPermission()
{
    const bool authorized = m_locationPermissionService->isAuthorized();
    setNeedsLocationPermission(!authorized);
    if (authorized)
        updateWiFiInfo();
}

void WiFiService::updateWiFiInfo()
{
    beginPass(base::Delivery::Immediate);
}

void WiFiService::beginPass(base::Delivery delivery)
{
    // Time asleep counts: what was read before it is old.
    const auto now = m_clock.nowWithSleep();
    if (m_lastUpdateTime && now - *m_lastUpdateTime < minUpdateInterval)
        return;
    if (m_isUpdating)
        return;
    m_isUpdating = true;
    m_lastUpdateTime = now;
    ++m_updateCount;
    if (m_interface && !m_interface->powerOn())
        takeSample({.interface = m_interface});
    else
        readLinkSnapshot(delivery);
}

void WiFiService::readLinkSnapshot(base::Delivery delivery)
{
    const auto read = [client = m_wifiClient, linked = m_interface, clock = &m_clock] {
        return readSample(client.get(), linked, *clock);
    };
    const auto take = [this, asleepBefore = m_clock.timeAsleep()](const LinkSample& sample) {
        if (base::hasSlept(asleepBefore, m_clock.timeAsleep()))
            readLinkSnapshot(base::Delivery::Immediate);
        else
            takeSample(sample);
    };
    base::runInBackground(m_queue, this, read, take, {m_clock, delivery});
}

void WiFiService::takeSample(const LinkSample& sample)
{
    m_interface = sample.reading && sample.reading->ssid ? sample.interface : nullptr;
    Q_EMIT linkRead(sample.reading,
        sample.interface ? std::optional(sample.reading.has_value()) : std::nullopt);
    if (!sample.interface) {
        endWithoutLink(kNoInterface);
    } else if (!sample.reading) {
        endWithoutLink(kRadioOff);
    } else {
        if (m_updateCount % kPassesPerLogLine == 0)
            base::log(logCategory(), u"WiFiService: Update #%1"_s.arg(m_updateCount));
        applyLinkSnapshot(makeWiFiInfo(*sample.reading, sample.readAt));
    }
}

void WiFiService::applyLinkSnapshot(const WiFiInfo& snapshot)
{
    const bool authorized
        = m_locationPermissionService && m_locationPermissionService->isAuthorized();
    applyPermission(snapshot, authorized);
    if (snapshot.ssid)
        setErrorMessage({});
    else
        setErrorMessage(authorized ? kNoName : kNoPermission);
    const auto shown = m_currentWiFi.value_or(WiFiInfo {});
    if (shown.ssid != snapshot.ssid || shown.signalStrength != snapshot.signalStrength
        || shown.linkRate != snapshot.linkRate)
        setCurrentWiFi(snapshot);
    if (!mayComeBack(snapshot) && m_networkNotificationService)
        m_networkNotificationService->checkForNetworkChanges(snapshot);
    finishPass();
}

/// Whether the snapshot shows no link, and has not for long: between two access points there is
/// none for a moment, and after a sleep it takes some seconds. That is no loss to tell of before a
/// later pass shows the same.
bool WiFiService::mayComeBack(const WiFiInfo& snapshot)
{
    const auto asleep = m_clock.timeAsleep();
    const auto now = m_clock.nowWithSleep();
    if (snapshot.ssid || snapshot.signalStrength) {
        m_asleepWithLink = asleep;
        m_withoutLinkSince.reset();
        return false;
    }
    if (!m_withoutLinkSince)
        m_withoutLinkSince = now;
    const bool hasSlept = m_asleepWithLink && base::hasSlept(*m_asleepWithLink, asleep);
    return now - *m_withoutLinkSince < (hasSlept ? kReturnAfterSleep : kReturn);
}

void WiFiService::applyPermission(const WiFiInfo& snapshot, bool authorized)
{
    // A readable name proves that access was granted, whatever was said before.
    if (snapshot.ssid && m_locationPermissionService && !authorized)
        m_locationPermissionService->updateAuthorizationStatus(
            platform::AuthorizationStatus::AuthorizedAlways);
    setNeedsLocationPermission(!snapshot.ssid && !authorized);
}

void WiFiService::endWithoutLink(const QString& message)
{
    setCurrentWiFi({});
    setErrorMessage(message);
    finishPass();
}

void WiFiService::finishPass()
{
    m_isUpdating = false;
    Q_EMIT passFinished();
}

void WiFiService::setCurrentWiFi(std::optional<WiFiInfo> info)
{
    base::publish(*this, m_currentWiFi, std::move(info), &WiFiService::currentWiFiChanged);
}

void WiFiService::setErrorMessage(std::optional<QString> message)
{
    base::publish(*this, m_errorMessage, std::move(message), &WiFiService::errorMessageChanged);
}

void WiFiService::setNeedsLocationPermission(bool needed)
{
    base::publish(
        *this, m_needsLocationPermission, needed, &WiFiService::needsLocationPermissionChanged);
}

} // namespace netvane::wifi
