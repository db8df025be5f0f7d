#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace netvane::platform {

/// Asks the user where a plain text file goes. Main thread.
class SavePanel {
public:
    /// The path on this machine; absent when the user thought better of it.
    using Answer = std::function<void(const std::optional<QString>& path)>;

    virtual ~SavePanel() = default;

    /// Shows a panel that holds up nothing else and proposes `fileName`. `chosen` is called once,
    /// on a later turn of the main loop; not when the program ends before.
    virtual void show(const QString& title, const QString& fileName, Answer chosen) = 0;
};

} // namespace netvane::platform
