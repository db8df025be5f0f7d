#pragma once

#include "support/fake_bus_service.h"
#include "support/private_bus.h"

#include <map>
#include <memory>

namespace netvane::soak {

/// A desktop's services on a bus of its own. They come, go and change their settings.
class DesktopServices {
public:
    DesktopServices();

    QString address() const { return m_bus.address(); }
    /// The bus and all services.
    bool start();
    /// All services, and the bus without notice.
    void stop();

    /// A panel that shows status items.
    void setPanel(bool isThere);
    /// What NetworkManager says about scans: "yes", "no" or "auth".
    void setPermission(const QString& word);
    /// org.freedesktop.appearance color-scheme: 0 none, 1 dark, 2 light.
    void setColorScheme(uint scheme);

    qint64 notifications() const { return m_notifications; }

private:
    void add(const QString& name, const QString& path, test::Answer answer);

    test::PrivateBus m_bus;
    std::map<QString, std::unique_ptr<test::FakeBusService>> m_services; ///< by name
    QString m_permission = QStringLiteral("yes");
    uint m_scheme = 1;
    qint64 m_notifications = 0;
};

} // namespace netvane::soak
