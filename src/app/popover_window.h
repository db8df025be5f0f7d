#pragma once

#include "app/hosted_view.h"
#include "app/view_host.h"

#include <QObject>

#include <functional>
#include <optional>

namespace netvane::app {

/// The popover of the status item: a window without a frame that stays above the others. It is made
/// when it is first shown, and kept. Its height follows what its view asks for. Main thread.
class PopoverWindow final : public QObject {
    Q_OBJECT

public:
    using MakeView = std::function<HostedView()>;

    /// `host` outlives the popover; `makeView` is called once, at the first showing.
    PopoverWindow(ViewHost& host, MakeView makeView);
    /// Says nothing any more.
    ~PopoverWindow() override;

    bool isShown() const { return m_window && m_window->isVisible(); }
    /// Null before the first showing.
    HostWindow* window() const { return m_window.get(); }

    /// Shows it at the anchor (a status item, or a point), in the coordinates of the desktop;
    /// without one in the corner where panels have their status area. Takes the keyboard.
    void show(const std::optional<QRect>& anchor);
    void performClose();

Q_SIGNALS:
    /// However it came about.
    void didClose();

private:
    void makeWindow();
    void place();
    void placeSoon();
    void roundCorners();

    ViewHost& m_host;
    MakeView m_makeView;
    std::unique_ptr<HostWindow> m_window;
    std::optional<QRect> m_anchor;
    bool m_isPlacingDue = false;
};

} // namespace netvane::app
