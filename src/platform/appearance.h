#pragma once

#include <QObject>

namespace netvane::platform {

enum class ColorScheme {
    NoPreference, ///< also when the desktop does not tell
    Dark,
    Light,
};

/// What the user wants windows to look like. Main thread.
class Appearance : public QObject {
    Q_OBJECT

public:
    /// `NoPreference` until the desktop's first answer, which comes with `colorSchemeChanged`.
    virtual ColorScheme colorScheme() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
};

} // namespace netvane::platform
