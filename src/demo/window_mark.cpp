#include "demo/window_mark.h"

#include <QApplication>
#include <QEvent>
#include <QQuickView>

using namespace Qt::Literals::StringLiterals;

namespace netvane::demo {

WindowMark::WindowMark(QApplication& application, const Stage& stage)
    : m_stage(stage)
{
    application.installEventFilter(this);
    connect(&stage, &Stage::sceneChanged, this, [this] {
        for (QWindow* window : QGuiApplication::topLevelWindows())
            mark(*window);
    });
}

bool WindowMark::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWindowType())
        mark(*static_cast<QWindow*>(watched));
    return QObject::eventFilter(watched, event);
}

/// Menus and dialogues are those of the window that they belong to.
void WindowMark::mark(QWindow& window)
{
    if (qobject_cast<QQuickView*>(&window))
        window.setTitle(u"Netvane – Demonstration: "_s + m_stage.scene().title);
}

} // namespace netvane::demo
