#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace netvane::platform {

/// Makes a new text of the stored one, which may be absent. May be called more than once, and on
/// any thread.
using TextEdit = std::function<QString(const std::optional<QString>& stored)>;

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
    /// For a text that another process may have changed since it was read here: `edit` gets the one
    /// that is stored when the new one takes its place.
    virtual void editText(const QString& key, const TextEdit& edit) = 0;
    virtual void remove(const QString& key) = 0;
};

} // namespace netvane::platform
