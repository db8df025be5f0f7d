#pragma once

#include <QString>

namespace netvane::platform {

/// Lets the user choose where a text goes, of what this desktop can do with one. Main thread.
class SharePicker {
public:
    virtual ~SharePicker() = default;

    /// Shows the choice over the active window, else in the middle of the main screen; without
    /// either it does nothing. Returns at once.
    virtual void show(const QString& text) = 0;
};

} // namespace netvane::platform
