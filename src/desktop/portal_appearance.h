#pragma once

#include "bus/bus_service.h"
#include "platform/appearance.h"

namespace netvane::desktop {

/// The colour scheme that the desktop's portal tells (`org.freedesktop.portal.Settings`, key
/// `color-scheme` of `org.freedesktop.appearance`). It is read when a portal appears and followed
/// by its signal SettingChanged. Before the first portal there is no preference.
class PortalAppearance final : public platform::Appearance {
    Q_OBJECT

public:
    explicit PortalAppearance(bus::BusLink& sessionBus);

    platform::ColorScheme colorScheme() const override { return m_scheme; }

private:
    void read();
    void handleSettingChanged(const QDBusMessage& signal);
    void setScheme(platform::ColorScheme scheme);

    bus::BusService m_portal;
    platform::ColorScheme m_scheme = platform::ColorScheme::NoPreference;
};

/// What the value of the key says; portals wrap it in one variant or in two.
platform::ColorScheme colorSchemeOf(const QVariant& value);

} // namespace netvane::desktop
