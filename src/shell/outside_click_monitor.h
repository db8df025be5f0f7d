#pragma once

#include <QPoint>

#include <functional>
#include <memory>
#include <optional>

class QWindow;

namespace netvane::shell {

/// Watches, while it lives, for presses of the left or the right mouse button that go to other
/// programs; they get them all the same. Main thread.
class OutsideClickMonitor {
public:
    /// Gets where the press was, in the coordinates of the desktop; absent where nobody can tell,
    /// but then it was outside of the window that is watched over. May destroy the monitor only
    /// from a later turn of the event loop.
    using Handler = std::function<void(const std::optional<QPoint>& position)>;

    virtual ~OutsideClickMonitor() = default;

    /// The one that fits the window system: all presses on X11; elsewhere, and on an X server that
    /// sees only part of the desktop, those by which `window` loses the keyboard.
    static std::unique_ptr<OutsideClickMonitor> create(QWindow& window, Handler handler);
};

} // namespace netvane::shell
