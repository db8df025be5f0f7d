#pragma once

#include "simulated/desktop.h"
#include "ui/painting/theme.h"
#include "ui/view_engine.h"

#include <QQuickItem>
#include <QQuickView>

namespace netvane::test {

/// One view in a window of its own, rendered in software without a display.
class ViewFixture {
public:
    /// `name` is that of a QML file of the module; `properties` its required ones.
    explicit ViewFixture(const QString& name, const QVariantMap& properties = {}, int width = 388);

    QQuickItem& root() { return *m_window.rootObject(); }
    /// The outermost visible item that has the value in the property; null when there is none.
    QQuickItem* find(const char* property, const QVariant& value);
    /// The visible texts in the order of the item tree; only those below the item with that object
    /// name, when one is given.
    QStringList texts(const QString& below = {});
    /// Clicks the middle of the item that has the text.
    void click(const QString& text);
    /// Renders the view in both schemes. When NETVANE_PICTURES names a folder, writes the pictures
    /// there, for people to look at. Returns what QML complained of, and what `auditView` finds.
    QStringList problems(const QString& picture);

    simulated::Appearance appearance;

private:
    ui::Theme m_theme {appearance};
    ui::ViewEngine m_engine {m_theme};
    QQuickView m_window {&m_engine, nullptr};
    QStringList m_problems;
};

} // namespace netvane::test
