#include "windows/window_factory.h"

#include <QMenu>

namespace netvane::windows {

WindowFactory::WindowFactory(const platform::Appearance& appearance)
    : m_appearance(appearance)
{
    ui::ViewEngine::prepareRendering();
}

std::unique_ptr<shell::HostWindow> WindowFactory::makeWindow(HostedView view, const QMenu* menu)
{
    if (!m_engine) {
        m_theme = std::make_unique<ui::Theme>(m_appearance);
        m_engine = std::make_unique<ui::ViewEngine>(*m_theme);
    }
    auto window = std::make_unique<QuickWindow>(*m_engine, std::move(view));
    const auto paintGround = [each = &window->view(), &theme = *m_theme] {
        if (each->color().alpha() > 0) // else the view has a ground of its own
            each->setColor(theme.controlBackground());
    };
    paintGround();
    QObject::connect(m_theme.get(), &ui::Theme::schemeChanged, &window->view(), paintGround);
    if (menu) {
        for (auto* action : menu->actions())
            window->addShortcut(*action);
    }
    return window;
}

} // namespace netvane::windows
