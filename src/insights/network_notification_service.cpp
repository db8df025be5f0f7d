#include "insights/network_notification_service.h"

#include "base/log.h"
#include "base/publish.h"

#include <QUuid>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::insights {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.insights")

// Some systems answer before their own settings show the answer.
constexpr std::chrono::milliseconds kSettlingTime = 300ms;

constexpr int kPoorSignalDbm = -80; // and below

} // namespace

NetworkNotificationService::NetworkNotificationService(
    platform::UserNotificationCenter& center, platform::UserDefaults& defaults, base::Clock& clock)
    : m_center(center)
    , m_defaults(defaults)
    , m_clock(clock)
    , m_notificationsEnabled(defaults.boolean(enabledKey).value_or(false))
{
    // A desktop's notification service may start later than this program, or be replaced.
    connect(&m_center, &platform::UserNotificationCenter::settingsChanged, this,
        &NetworkNotificationService::refreshAuthorizationStatus);
    refreshAuthorizationStatus();
}

void NetworkNotificationService::setNotificationsEnabled(bool enabled)
{
    if (m_notificationsEnabled == enabled)
        return;
    m_notificationsEnabled = enabled;
    Q_EMIT notificationsEnabledChanged();
    m_defaults.setBoolean(enabledKey, enabled);
    if (enabled) {
        requestNotificationPermission();
    } else {
        m_previousSsid.reset();
        m_previousSignalQuality.reset();
    }
}

void NetworkNotificationService::refreshAuthorizationStatus()
{
    m_center.getNotificationSettings(this, [this](AuthorizationStatus status) {
        base::publish(*this, m_authorizationStatus, status,
            &NetworkNotificationService::authorizationStatusChanged);
    });
}

void NetworkNotificationService::requestNotificationPermission()
{
    using enum platform::NotificationOption;
    refreshAuthorizationStatus();
    if (m_authorizationStatus != AuthorizationStatus::NotDetermined)
        return;
    m_center.requestAuthorization(
        Alert | Sound, this, [this](bool granted, const std::optional<QString>& error) {
            permissionAnswered(granted, error);
        });
}

void NetworkNotificationService::permissionAnswered(
    bool granted, const std::optional<QString>& error)
{
    refreshAuthorizationStatus();
    if (granted)
        m_laterRefresh = m_clock.after(kSettlingTime, [this] { refreshAuthorizationStatus(); });
    if (error)
        base::log(
            logCategory(), u"NetworkNotificationService: Permission request error: "_s + *error);
}

bool NetworkNotificationService::mayNotify() const
{
    if (!m_notificationsEnabled || m_authorizationStatus != AuthorizationStatus::Authorized)
        return false;
    return !m_lastNotificationTime
        || m_clock.nowWithSleep() - *m_lastNotificationTime >= notificationThrottleInterval;
}

void NetworkNotificationService::checkForNetworkChanges(const wifi::WiFiInfo& wifiInfo)
{
    // Snapshots that are not evaluated are not stored: the next evaluation compares with the last
    // evaluated one.
    if (!mayNotify())
        return;
    notifyOfChanges(wifiInfo);
    m_previousSsid = wifiInfo.ssid;
    m_previousSignalQuality = wifiInfo.signalQuality();
}

void NetworkNotificationService::notifyOfChanges(const wifi::WiFiInfo& wifiInfo)
{
    using enum wifi::SignalQuality;
    const auto& signal = wifiInfo.signalStrength;
    if (m_previousSsid && wifiInfo.ssid && *m_previousSsid != *wifiInfo.ssid)
        sendNotification(
            u"Network Changed"_s, u"Connected to "_s + *wifiInfo.ssid, Category::NetworkConnected);
    const bool wasFine = m_previousSignalQuality == excellent || m_previousSignalQuality == good;
    if (wasFine && signal && *signal <= kPoorSignalDbm)
        sendNotification(u"Signal Weak"_s, u"WiFi signal has dropped to poor quality"_s);
    if (m_previousSsid && !wifiInfo.ssid && !signal)
        sendNotification(
            u"Disconnected"_s, u"Lost connection to WiFi network"_s, Category::NetworkDisconnected);
}

void NetworkNotificationService::sendNotification(
    const QString& title, const QString& body, Category category)
{
    const platform::NotificationRequest request {
        .identifier = QUuid::createUuid().toString(QUuid::WithoutBraces),
        .title = title,
        .body = body,
        .category = category,
    };
    m_center.add(request, this, [this](const std::optional<QString>& error) {
        if (error)
            base::log(logCategory(),
                u"NetworkNotificationService: Failed to send notification: "_s + *error);
        else
            m_lastNotificationTime = m_clock.nowWithSleep();
    });
}

} // namespace netvane::insights
