#pragma once

#include "demo/stage.h"

#include <QApplication>
#include <QEvent>
#include <QQuickView>

namespace netvane::demo {

/// Has the title of each of the program's windows say that this is a demonstration, and of what.
class WindowMark final : public QObject {
public:
    /// Both outlive it.
    WindowMark(QApplication& application, const Stage& stage)
        : m_stage(stage)
    {
        application.installEventFilter(this);
        connect(&stage, &Stage::sceneChanged, this, [this] {
            for (QWindow* window : QGuiApplication::topLevelWindows())
                mark(window);
        });
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            mark(watched);
        return false;
    }

private:
    /// Menus and dialogues are those of the window that they belong to.
    void mark(QObject* object)
    {
        if (auto* window = qobject_cast<QQuickView*>(object))
            window->setTitle(QStringLiteral("Netvane – Demonstration: ") + m_stage.scene().title);
    }

    const Stage& m_stage;
};

} // namespace netvane::demo
