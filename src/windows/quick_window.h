#pragma once

#include "shell/host_window.h"
#include "ui/view_engine.h"
#include "windows/hosted_view.h"

#include <QQuickView>

class QAction;

namespace netvane::windows {

/// A window that Qt Quick draws. Main thread.
class QuickWindow final : public shell::HostWindow {
    Q_OBJECT

public:
    /// `engine` outlives the window.
    QuickWindow(ui::ViewEngine& engine, HostedView view);
    ~QuickWindow() override;

    QQuickView& view() { return *m_view; }
    QWindow& window() override { return *m_view; }
    std::optional<int> preferredHeight() const override;
    void addGround(int cornerRadius) override;
    void releaseView() override;
    /// Has the action's shortcut work while this is the active window. The action outlives it.
    void addShortcut(QAction& action);

private:
    QObject* make(const QString& component, const QVariantMap& properties);

    std::shared_ptr<void> m_state;
    std::unique_ptr<QQuickView> m_view;
};

/// The root of the view in a window that was made here.
QQuickItem& rootOf(QWindow& window);

} // namespace netvane::windows
