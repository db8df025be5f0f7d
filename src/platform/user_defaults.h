#pragma once

#include <QString>

#include <optional>

namespace netvane::platform {

/// Small values that survive restarts, each under its own key. A value can be read back at once,
/// even if it could not be stored. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// Absent without a value of this type under the key.
    virtual std::optional<bool> boolean(const QString& key) const = 0;
    virtual std::optional<QString> text(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setText(const QString& key, const QString& value) = 0;
    virtual void remove(const QString& key) = 0;
};

} // namespace netvane::platform
