#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace netvane::platform {

// The ways in which a text leaves the program. Main thread.

/// What the user pastes from.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Replaces the content by plain text.
    virtual void setText(const QString& text) = 0;
};

/// Asks the user where to save a plain text file.
class SavePanel {
public:
    /// The path on this machine; absent if the user cancelled.
    using Answer = std::function<void(const std::optional<QString>& path)>;

    virtual ~SavePanel() = default;

    /// Shows a panel that blocks nothing else and proposes `fileName`. `chosen` is called once, on
    /// a later turn of the main loop; not if the program ends before.
    virtual void show(const QString& title, const QString& fileName, Answer chosen) = 0;
};

/// Lets the user choose how to share a text: the desktop's programs for it.
class SharePicker {
public:
    virtual ~SharePicker() = default;

    /// Shows the choice over the active window, else in the middle of the main screen; without
    /// either it does nothing. Returns at once.
    virtual void show(const QString& text) = 0;
};

} // namespace netvane::platform
