#pragma once

#include "ui/painting/theme.h"
#include "windows/quick_window.h"

class QMenu;

namespace netvane::windows {

/// Makes windows. What they share, the engine and the theme, is made with the first of them.
/// Main thread.
class WindowFactory {
public:
    /// `appearance` outlives this.
    explicit WindowFactory(const platform::Appearance& appearance);

    /// A window on the ground of the theme; it lives no longer than this. The shortcuts of `menu`,
    /// which outlives it, work in it.
    std::unique_ptr<shell::HostWindow> makeWindow(HostedView view, const QMenu* menu);

private:
    const platform::Appearance& m_appearance;
    std::unique_ptr<ui::Theme> m_theme;
    std::unique_ptr<ui::ViewEngine> m_engine;
};

} // namespace netvane::windows
