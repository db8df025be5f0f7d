#pragma once

#include "platform/status_notifier_host.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

namespace netvane::shell {

/// Whether this desktop has a place for status items: a host of StatusNotifier items or, on X11, a
/// system tray (freedesktop.org System Tray Protocol). It is asked before the first use of
/// QSystemTrayIcon, which decides between the two kinds at that moment and for good: asked too
/// early, it never finds a host that appears later. Main thread.
class StatusArea final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    enum class State {
        Unknown, ///< the session has not answered yet
        Absent,
        Present,
    };

    /// `host` outlives this.
    explicit StatusArea(const platform::StatusNotifierHost& host);
    ~StatusArea() override;

    State state() const;

Q_SIGNALS:
    /// Something came or went; `state` may be another.
    void changed();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    const platform::StatusNotifierHost& m_host;
    uint m_managerAtom = 0;
};

} // namespace netvane::shell
