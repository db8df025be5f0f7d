#pragma once

#include <QObject>

namespace netvane::platform {

enum class ColorScheme {
    NoPreference, ///< also if the desktop states none
    Dark,
    Light,
};

/// The colour scheme that the user has chosen. Main thread.
class Appearance : public QObject {
    Q_OBJECT

public:
    /// `NoPreference` until the desktop's first answer, which comes with `colorSchemeChanged`.
    virtual ColorScheme colorScheme() const = 0;

Q_SIGNALS:
    void colorSchemeChanged();
};

} // namespace netvane::platform
