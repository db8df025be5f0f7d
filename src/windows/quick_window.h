#pragma once

#include "shell/host_window.h"
#include "ui/view_engine.h"

#include <QQuickView>
#include <QUrl>
#include <QVariantMap>

#include <memory>

class QAction;
class QMenu;

namespace netvane::windows {

/// A window that Qt Quick draws. Main thread.
class QuickWindow final : public shell::HostWindow {
    Q_OBJECT

public:
    /// A QML file and the objects that it shows.
    struct Content {
        QUrl source;
        QVariantMap properties; ///< the required ones of its root
        std::shared_ptr<void> state; ///< goes after the view
    };

    /// On the theme's background. The shortcuts of `menu` work while this is the active window.
    /// `engine` and `menu` outlive the window.
    QuickWindow(ui::ViewEngine& engine, const QMenu& menu, Content content);
    ~QuickWindow() override;

    QWindow& window() override { return *m_view; }
    std::optional<int> preferredHeight() const override;
    void addBackground(int cornerRadius) override;
    void setNote(const QString& text) override;
    void releaseView() override;

private:
    void addShortcut(QAction& action);
    void paintBackground();
    QObject* make(const QString& component, const QVariantMap& properties);

    ui::ViewEngine& m_engine;
    std::shared_ptr<void> m_state;
    std::unique_ptr<QQuickView> m_view;
};

/// The root of the view in a window that was made here.
QQuickItem& rootOf(QWindow& window);

} // namespace netvane::windows
