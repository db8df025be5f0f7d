#include "app/view_host.h"

#include <QMenu>

namespace netvane::app {

std::unique_ptr<HostWindow> ViewHost::makeWindow(HostedView view)
{
    if (!m_engine) {
        m_theme = std::make_unique<ui::Theme>(m_appearance);
        m_engine = std::make_unique<ui::ViewEngine>(*m_theme);
    }
    auto window = std::make_unique<HostWindow>(*m_engine, std::move(view));
    const auto paintGround = [each = window.get(), &theme = *m_theme] {
        if (each->color().alpha() > 0) // else the view has a ground of its own
            each->setColor(theme.controlBackground());
    };
    paintGround();
    QObject::connect(m_theme.get(), &ui::Theme::schemeChanged, window.get(), paintGround);
    if (m_menu) {
        for (auto* action : m_menu->actions())
            window->addShortcut(*action);
    }
    return window;
}

} // namespace netvane::app
