#pragma once

#include <QString>

namespace netvane::platform {

/// What the user pastes from. Main thread.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    /// Replaces whatever was there by plain text.
    virtual void setText(const QString& text) = 0;
};

} // namespace netvane::platform
