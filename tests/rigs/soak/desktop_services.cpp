#include "desktop_services.h"

#include <QDBusMetaType>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::soak {
namespace {

using TextMap = QMap<QString, QString>;

const QString kNetworkManager = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkManagerPath = u"/org/freedesktop/NetworkManager"_s;
const QString kPortal = u"org.freedesktop.portal.Desktop"_s;
const QString kPortalPath = u"/org/freedesktop/portal/desktop"_s;
const QString kPanel = u"org.kde.StatusNotifierWatcher"_s;
const QString kNotifications = u"org.freedesktop.Notifications"_s;

QVariant variant(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

} // namespace

DesktopServices::DesktopServices()
{
    qDBusRegisterMetaType<TextMap>();
}

bool DesktopServices::start()
{
    if (!m_bus.start())
        return false;
    setPanel(true);
    add(kPortal, kPortalPath,
        [this](const QDBusMessage& call) { return call.createReply(variant(variant(m_scheme))); });
    add(kNetworkManager, kNetworkManagerPath, [this](const QDBusMessage& call) {
        return call.createReply(
            QVariant::fromValue(TextMap {{kNetworkManager + u".wifi.scan"_s, m_permission}}));
    });
    add(kNotifications, u"/org/freedesktop/Notifications"_s, [this](const QDBusMessage& call) {
        m_services[kNotifications]->calls.clear();
        if (call.member() == u"GetCapabilities"_s)
            return call.createReply(QStringList {u"body"_s});
        return call.createReply(uint(++m_notifications));
    });
    return true;
}

void DesktopServices::stop()
{
    m_services.clear();
    m_bus.stop();
}

void DesktopServices::add(const QString& name, const QString& path, test::Answer answer)
{
    m_services[name]
        = std::make_unique<test::FakeBusService>(m_bus.address(), name, path, std::move(answer));
}

void DesktopServices::setPanel(bool isThere)
{
    if (isThere)
        add(kPanel, u"/StatusNotifierWatcher"_s,
            [](const QDBusMessage& call) { return call.createReply(variant(true)); });
    else
        m_services.erase(kPanel);
}

void DesktopServices::setPermission(const QString& word)
{
    m_permission = word;
    m_services[kNetworkManager]->send(
        QDBusMessage::createSignal(kNetworkManagerPath, kNetworkManager, u"CheckPermissions"_s));
}

void DesktopServices::setColorScheme(uint scheme)
{
    m_scheme = scheme;
    auto changed = QDBusMessage::createSignal(
        kPortalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
    changed << u"org.freedesktop.appearance"_s << u"color-scheme"_s << variant(scheme);
    m_services[kPortal]->send(changed);
}

} // namespace netvane::soak
