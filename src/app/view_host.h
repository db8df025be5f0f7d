#pragma once

#include "app/host_window.h"
#include "ui/theme.h"

class QMenu;

namespace netvane::app {

/// Makes the program's windows. What they share, the engine and the theme, is made with the first
/// of them: most sessions never open one, and it costs memory. Main thread.
class ViewHost {
public:
    /// `appearance` outlives the host.
    explicit ViewHost(const platform::Appearance& appearance)
        : m_appearance(appearance)
    {
    }

    /// The menu whose shortcuts work in each window made from now on; it outlives them.
    void setMenu(const QMenu& menu) { m_menu = &menu; }
    /// A window on the ground of the theme; it lives no longer than the host.
    std::unique_ptr<HostWindow> makeWindow(HostedView view);

private:
    const platform::Appearance& m_appearance;
    const QMenu* m_menu = nullptr;
    std::unique_ptr<ui::Theme> m_theme;
    std::unique_ptr<ui::ViewEngine> m_engine;
};

} // namespace netvane::app
