#include "app/view_window.h"

#include "shell/window_frame.h"

#include <QGuiApplication>

namespace netvane::app {

ViewWindow::ViewWindow(std::unique_ptr<shell::HostWindow> host, const Look& look)
    : m_host(std::move(host))
{
    window().setTitle(look.title);
    const QSize room = shell::frameArea(*QGuiApplication::primaryScreen()).size();
    window().setMinimumSize(look.minimumSize.boundedTo(room));
    window().resize(look.size.boundedTo(room));
    connect(m_host.get(), &shell::HostWindow::cancelled, &window(), &QWindow::close);
    connect(&window(), &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            Q_EMIT closed();
    });
}

ViewWindow::~ViewWindow()
{
    window().disconnect(this);
}

void ViewWindow::show()
{
    window().show();
    m_host->bringToFront();
}

} // namespace netvane::app
