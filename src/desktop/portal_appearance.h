#pragma once

#include "bus/bus_link.h"
#include "platform/appearance.h"

#include <QDBusMessage>
#include <QDBusVariant>

namespace netvane::desktop {

/// The scheme that the desktop tells through its portal (`org.freedesktop.portal.Settings`, key
/// `color-scheme` of `org.freedesktop.appearance`), read once for each portal that appears and told
/// again by its signal SettingChanged. Without a portal there is no preference.
class PortalAppearance final : public platform::Appearance {
    Q_OBJECT

public:
    explicit PortalAppearance(bus::BusLink& sessionBus);

    platform::ColorScheme colorScheme() const override { return m_scheme; }

private Q_SLOTS:
    void handleOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void handleSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void watchSessionBus();
    void read();
    void setScheme(platform::ColorScheme scheme);

    bus::BusLink& m_sessionBus;
    platform::ColorScheme m_scheme = platform::ColorScheme::NoPreference;
    int m_changes = 0; ///< an answer older than a signal does not count
};

/// What the value of the key says; portals wrap it in one variant or in two.
platform::ColorScheme colorSchemeOf(const QVariant& value);

} // namespace netvane::desktop
