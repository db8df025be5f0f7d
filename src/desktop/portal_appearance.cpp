#include "desktop/portal_appearance.h"

#include <QDBusPendingCallWatcher>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

const QString kPortal = u"org.freedesktop.portal.Desktop"_s;
const QString kPortalPath = u"/org/freedesktop/portal/desktop"_s;
const QString kSettings = u"org.freedesktop.portal.Settings"_s;
const QString kGroup = u"org.freedesktop.appearance"_s;
const QString kKey = u"color-scheme"_s;

} // namespace

PortalAppearance::PortalAppearance(bus::BusLink& sessionBus)
    : m_sessionBus(sessionBus)
{
    // Without it Qt finds no slot for a signal with a variant in it.
    qRegisterMetaType<QDBusVariant>();
    connect(&m_sessionBus, &bus::BusLink::stateChanged, this, &PortalAppearance::watchSessionBus);
    watchSessionBus();
}

void PortalAppearance::watchSessionBus()
{
    if (m_sessionBus.state() != bus::BusLink::State::Connected)
        return;
    QDBusConnection bus = m_sessionBus.connection();
    bus.connect(QString(), kPortalPath, kSettings, u"SettingChanged"_s, this,
        SLOT(handleSettingChanged(QString, QString, QDBusVariant)));
    // A portal that comes later, or again.
    bus.connect(QString(), u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s,
        u"NameOwnerChanged"_s, {kPortal}, u"sss"_s, this,
        SLOT(handleOwnerChanged(QString, QString, QString)));
    read();
}

void PortalAppearance::handleOwnerChanged(const QString&, const QString&, const QString& newOwner)
{
    if (!newOwner.isEmpty())
        read();
}

/// May start the portal: the desktop's own toolkits do, and without it nobody tells the scheme.
void PortalAppearance::read()
{
    if (m_sessionBus.state() != bus::BusLink::State::Connected)
        return;
    // `Read` and not the newer `ReadOne`: all versions have it.
    auto call = QDBusMessage::createMethodCall(kPortal, kPortalPath, kSettings, u"Read"_s);
    call << kGroup << kKey;
    auto* watcher = new QDBusPendingCallWatcher(m_sessionBus.connection().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, asked = m_changes] {
        watcher->deleteLater();
        const QDBusMessage answer = watcher->reply();
        if (answer.type() == QDBusMessage::ReplyMessage && asked == m_changes)
            setScheme(colorSchemeOf(answer.arguments().value(0)));
    });
}

void PortalAppearance::handleSettingChanged(
    const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group != kGroup || key != kKey)
        return;
    ++m_changes;
    setScheme(colorSchemeOf(value.variant()));
}

void PortalAppearance::setScheme(platform::ColorScheme scheme)
{
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT colorSchemeChanged();
}

platform::ColorScheme colorSchemeOf(const QVariant& value)
{
    QVariant inner = value;
    for (int depth = 0; depth < 2 && inner.metaType() == QMetaType::fromType<QDBusVariant>();
         ++depth)
        inner = inner.value<QDBusVariant>().variant();
    if (inner.typeId() != QMetaType::UInt)
        return platform::ColorScheme::NoPreference;
    switch (inner.toUInt()) {
    case 1:
        return platform::ColorScheme::Dark;
    case 2:
        return platform::ColorScheme::Light;
    default:
        return platform::ColorScheme::NoPreference;
    }
}

} // namespace netvane::desktop
