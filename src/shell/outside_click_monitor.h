#pragma once

#include <QPoint>

#include <functional>
#include <memory>
#include <optional>

class QWindow;

namespace netvane::shell {

/// While it exists, watches for presses of the left or right mouse button on other programs; these
/// still get them. Main thread.
class OutsideClickMonitor {
public:
    /// Gets the position of the press in the coordinates of the desktop; absent if it is unknown,
    /// but then it was outside of the watched window. May destroy the monitor only from a later
    /// turn of the event loop.
    using Handler = std::function<void(const std::optional<QPoint>& position)>;

    virtual ~OutsideClickMonitor() = default;

    /// The one that fits the window system: all presses on X11; elsewhere, and on an X server that
    /// sees only part of the desktop, those by which `window` loses the keyboard.
    static std::unique_ptr<OutsideClickMonitor> create(QWindow& window, Handler handler);
};

} // namespace netvane::shell
