#pragma once

#include <QObject>

namespace netvane::platform {

/// Tells that the application became the active one: the user turned to one of its windows.
/// The application shell emits it; services below need no window system to listen.
class ApplicationActivity : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void didBecomeActive();
};

} // namespace netvane::platform
