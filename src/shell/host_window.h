#pragma once

// This room holds what needs a window system: the placement of the status item and the windows, the
// drawing of the icon, the clipboard, dialogs and settings pages. It uses Qt Widgets and X11, and
// draws no view. The report program does not link it.

#include <QObject>
#include <QWindow>

#include <optional>

namespace netvane::shell {

/// A window filled with one view, whatever draws it. Main thread.
class HostWindow : public QObject {
    Q_OBJECT

public:
    virtual QWindow& window() = 0;
    /// In front of the others, with the keyboard.
    void bringToFront()
    {
        window().setWindowStates(window().windowStates() & ~Qt::WindowMinimized);
        window().raise();
        window().requestActivate();
    }
    /// The height that the view asks for; absent while it asks for none.
    virtual std::optional<int> preferredHeight() const = 0;
    /// Gives a window that has no frame a background with corners of this radius (in pixels) below
    /// its view.
    virtual void addBackground(int cornerRadius) = 0;
    /// A line of its own above what the view shows; empty for none.
    virtual void setNote(const QString& text) = 0;
    /// Destroys the view and its state. The window is empty then.
    virtual void releaseView() = 0;

Q_SIGNALS:
    void preferredHeightChanged();
    /// Escape was pressed and nothing in the view had a use for it.
    void cancelled();
};

} // namespace netvane::shell
