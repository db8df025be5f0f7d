#pragma once

#include "bus/bus_link.h"

#include <QUrl>

namespace netvane::desktop {

/// The proxy that the desktop is set to use, as its portal tells it
/// (`org.freedesktop.portal.ProxyResolver`): it answers for GNOME and KDE, automatic set-ups (PAC)
/// included. Main thread.
class PortalProxies {
public:
    /// `sessionBus` outlives this.
    explicit PortalProxies(bus::BusLink& sessionBus)
        : m_bus(sessionBus)
    {
    }

    /// Passes on the proxy that leads to `url`; empty: none, or nobody said so within three
    /// seconds. May do so inside the call; never once `owner` is gone. This object need not live
    /// that long.
    void lookUp(
        const QUrl& url, QObject* owner, const std::function<void(const QByteArray&)>& take) const;

private:
    bus::BusLink& m_bus;
};

/// The first proxy of those that a portal or a user may name, as a URL with a scheme that libcurl
/// takes, perhaps with a password; empty when it says "directly", or something else.
QByteArray proxyAddress(const QStringList& proxies);

} // namespace netvane::desktop
