#pragma once

#include <QString>

#include <optional>

namespace netvane::platform {

/// Small values that survive restarts, each under a key of its own. What is set can be read back at
/// once, whether or not it could be stored. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// Absent when there is nothing under the key, or something of another type.
    virtual std::optional<bool> boolean(const QString& key) const = 0;
    virtual std::optional<QString> text(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setText(const QString& key, const QString& value) = 0;
    virtual void remove(const QString& key) = 0;
};

} // namespace netvane::platform
