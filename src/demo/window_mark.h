#pragma once

#include "demo/stage.h"

#include <QApplication>
#include <QEvent>
#include <QQuickView>

namespace netvane::demo {

/// Marks the title of each window as a demonstration, with the scene.
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
    /// Menus and dialogs are not marked.
    void mark(QObject* object)
    {
        if (auto* window = qobject_cast<QQuickView*>(object))
            window->setTitle(QStringLiteral("Netvane – Demonstration: ") + m_stage.scene().title);
    }

    const Stage& m_stage;
};

} // namespace netvane::demo
