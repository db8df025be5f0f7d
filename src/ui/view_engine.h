#pragma once

#include <QQmlEngine>

namespace netvane::ui {

class Theme;

/// The QML engine of all views. It knows the module `Netvane` and fetches nothing from anywhere:
/// whatever a name of the air may look like, no view can be made to ask the network for it.
class ViewEngine : public QQmlEngine {
    Q_OBJECT

public:
    /// To be called once, before the first window: software rendering costs a third of the memory
    /// of a GL context and is faster for this little.
    static void prepareRendering();

    /// `theme` outlives the engine.
    explicit ViewEngine(Theme& theme);

    Theme& theme() const { return m_theme; }

private:
    Theme& m_theme;
};

} // namespace netvane::ui
