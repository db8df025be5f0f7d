#pragma once

#include <QObject>

namespace netvane::platform {

/// Signals that the application became active: the user switched to one of its windows. The
/// application emits it, so that services need no window system to receive it.
class ApplicationActivity : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void didBecomeActive();
};

} // namespace netvane::platform
