#include "shell/outside_click_monitor.h"

#include "shell/raw_press_monitor.h"
#include "shell/x11_selection.h"

#include <QGuiApplication>
#include <QWindow>

namespace netvane::shell {
namespace {

class FocusMonitor final : public QObject, public OutsideClickMonitor {
public:
    FocusMonitor(QWindow& window, Handler handler)
        : m_wasActive(window.isActive())
    {
        connect(
            &window, &QWindow::activeChanged, this, [this, &window, handle = std::move(handler)] {
                if (std::exchange(m_wasActive, window.isActive()) && !window.isActive())
                    handle(std::nullopt);
            });
    }

private:
    bool m_wasActive;
};

} // namespace

std::unique_ptr<OutsideClickMonitor> OutsideClickMonitor::create(QWindow& window, Handler handler)
{
    // XWayland gets no clicks on the compositor's other windows.
    if (isX11() && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        if (auto monitor = RawPressMonitor::create(handler))
            return monitor;
    }
    return std::make_unique<FocusMonitor>(window, std::move(handler));
}

} // namespace netvane::shell
