#pragma once

#include "app/hosted_view.h"
#include "ui/view_engine.h"

#include <QQuickView>

class QAction;

namespace netvane::app {

/// A window filled with one view. Main thread.
class HostWindow final : public QQuickView {
    Q_OBJECT

public:
    /// `engine` outlives the window.
    HostWindow(ui::ViewEngine& engine, HostedView view);
    ~HostWindow() override;

    /// Has the action's shortcut work while this is the active window. The action outlives it.
    void addShortcut(QAction& action);
    /// The height that the view asks for; absent while it asks for none.
    std::optional<int> preferredHeight() const;
    /// Lets go of the view and of what it shows. The window is empty then.
    void releaseView();

Q_SIGNALS:
    void preferredHeightChanged();
    /// Escape was pressed and nothing in the view had a use for it.
    void cancelled();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::shared_ptr<void> m_state;
};

} // namespace netvane::app
