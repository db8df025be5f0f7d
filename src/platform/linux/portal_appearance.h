#pragma once

#include "platform/appearance.h"
#include "platform/linux/bus_link.h"

#include <QDBusMessage>
#include <QDBusVariant>

namespace netvane::platform {

/// The scheme that the desktop tells through its portal (`org.freedesktop.portal.Settings`, key
/// `color-scheme` of `org.freedesktop.appearance`), read once for each portal that appears and told
/// again by its signal SettingChanged. Without a portal there is no preference.
class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    explicit PortalAppearance(BusLink& sessionBus);

    ColorScheme colorScheme() const override { return m_scheme; }

private Q_SLOTS:
    void handleOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
    void handleSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void watchSessionBus();
    void read();
    void setScheme(ColorScheme scheme);

    BusLink& m_sessionBus;
    ColorScheme m_scheme = ColorScheme::NoPreference;
    int m_changes = 0; ///< an answer older than a signal does not count
};

/// What the value of the key says; portals wrap it in one variant or in two.
ColorScheme colorSchemeOf(const QVariant& value);

} // namespace netvane::platform
