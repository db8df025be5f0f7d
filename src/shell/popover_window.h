#pragma once

#include "shell/host_window.h"

#include <QRect>
#include <QWindow>

#include <functional>
#include <memory>
#include <optional>

namespace netvane::shell {

/// The popover of the status item: a window without a frame that stays above the others. It is made
/// when it is first shown, and kept. Its height follows what its view asks for. Main thread.
class PopoverWindow final : public QObject {
    Q_OBJECT

public:
    /// Null where there is no window to be had.
    using MakeWindow = std::function<std::unique_ptr<HostWindow>()>;

    /// `make` is called at each showing until there is a window.
    explicit PopoverWindow(MakeWindow make);
    /// Says nothing any more.
    ~PopoverWindow() override;

    bool isShown() const { return m_host && window()->isVisible(); }
    /// Null before the first showing.
    QWindow* window() const { return m_host ? &m_host->window() : nullptr; }

    /// Shows it at the anchor (a status item, or a point), in the coordinates of the desktop;
    /// without one in the corner where panels have their status area. Takes the keyboard.
    void show(const std::optional<QRect>& anchor);
    void performClose();

Q_SIGNALS:
    /// However it came about.
    void didClose();

private:
    void setUp();
    void place();
    void placeSoon();
    void roundCorners();

    MakeWindow m_make;
    std::unique_ptr<HostWindow> m_host;
    std::optional<QRect> m_anchor;
    bool m_isPlacingDue = false;
};

} // namespace netvane::shell
