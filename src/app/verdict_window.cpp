#include "app/verdict_window.h"

#include "shell/window_frame.h"

#include <QGuiApplication>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

constexpr QSize kSize(600, 720);
constexpr QSize kMinimumSize(440, 360);

} // namespace

VerdictWindow::VerdictWindow(std::unique_ptr<shell::HostWindow> host)
    : m_host(std::move(host))
{
    window().setTitle(u"What is wrong?"_s);
    const QSize room = shell::frameArea(*QGuiApplication::primaryScreen()).size();
    window().setMinimumSize(kMinimumSize.boundedTo(room));
    window().resize(kSize.boundedTo(room));
    connect(m_host.get(), &shell::HostWindow::cancelled, &window(), &QWindow::close);
    connect(&window(), &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            Q_EMIT closed();
    });
}

VerdictWindow::~VerdictWindow()
{
    window().disconnect(this);
}

void VerdictWindow::show()
{
    window().show();
    m_host->bringToFront();
}

} // namespace netvane::app
