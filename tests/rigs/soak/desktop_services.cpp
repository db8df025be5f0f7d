#include "desktop_services.h"

#include <QDBusMetaType>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::soak {
namespace {

using TextMap = QMap<QString, QString>;

const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerPath = u"/org/freedesktop/NetworkManager"_s;
const QString kPortalPath = u"/org/freedesktop/portal/desktop"_s;

} // namespace

DesktopServices::DesktopServices()
{
    qDBusRegisterMetaType<TextMap>();
}

bool DesktopServices::start()
{
    if (!m_bus.start())
        return false;
    m_panel = makePanel();
    m_portal = makePortal();
    m_networkManager = makeNetworkManager();
    m_notificationDaemon = makeNotifications();
    return true;
}

void DesktopServices::stop()
{
    for (auto* service : {&m_panel, &m_portal, &m_networkManager, &m_notificationDaemon})
        service->reset();
    m_bus.stop();
}

void DesktopServices::setPanel(bool isThere)
{
    m_panel = isThere ? makePanel() : nullptr;
}

void DesktopServices::setPermission(const QString& word)
{
    m_permission = word;
    m_networkManager->send(
        QDBusMessage::createSignal(kNetworkManagerPath, kNetworkManager, u"CheckPermissions"_s));
}

void DesktopServices::setColorScheme(uint scheme)
{
    m_scheme = scheme;
    auto told = QDBusMessage::createSignal(
        kPortalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
    told << u"org.freedesktop.appearance"_s << u"color-scheme"_s
         << QVariant::fromValue(QDBusVariant(scheme));
    m_portal->send(told);
}

DesktopServices::Service DesktopServices::makePanel()
{
    return std::make_unique<test::FakeBusService>(m_bus.address(),
        u"org.kde.StatusNotifierWatcher"_s, u"/StatusNotifierWatcher"_s,
        [](const QDBusMessage& call) {
            return call.createReply(QVariant::fromValue(QDBusVariant(true)));
        });
}

DesktopServices::Service DesktopServices::makePortal()
{
    return std::make_unique<test::FakeBusService>(m_bus.address(),
        u"org.freedesktop.portal.Desktop"_s, kPortalPath, [this](const QDBusMessage& call) {
            const auto inner = QVariant::fromValue(QDBusVariant(m_scheme));
            return call.createReply(QVariant::fromValue(QDBusVariant(inner)));
        });
}

DesktopServices::Service DesktopServices::makeNetworkManager()
{
    return std::make_unique<test::FakeBusService>(
        m_bus.address(), kNetworkManager, kNetworkManagerPath, [this](const QDBusMessage& call) {
            const TextMap permissions {{kNetworkManager + u".wifi.scan"_s, m_permission}};
            return call.createReply(QVariant::fromValue(permissions));
        });
}

DesktopServices::Service DesktopServices::makeNotifications()
{
    return std::make_unique<test::FakeBusService>(m_bus.address(),
        u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
        [this](const QDBusMessage& call) {
            m_notificationDaemon->calls.clear();
            if (call.member() == u"GetCapabilities"_s)
                return call.createReply(QStringList {u"body"_s});
            ++m_notifications;
            return call.createReply(uint(m_notifications));
        });
}

} // namespace netvane::soak
