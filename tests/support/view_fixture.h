#pragma once

#include "fake_appearance.h"
#include "ui/painting/theme.h"
#include "ui/view_engine.h"

#include <QQuickItem>
#include <QQuickView>

namespace netvane::test {

/// One view in a window of its own, rendered in software without a display. What QML complains of
/// fails the test that looks at `problems`.
class ViewFixture {
public:
    /// `name` is that of a QML file of the module; `properties` its required ones.
    explicit ViewFixture(const QString& name, const QVariantMap& properties = {}, int width = 420);

    QQuickItem& root() { return *m_window.rootObject(); }
    /// The outermost visible item that has the value in the property; null when there is none.
    QQuickItem* find(const char* property, const QVariant& value);
    /// The texts that can be seen, in the order of the item tree.
    QStringList texts();
    /// Presses and releases the middle of the item, with the left button.
    void click(QQuickItem* item);
    /// Renders the view in both schemes; writes both beside one another under the folder named by
    /// NETVANE_PICTURES, when it is set, for people to look at.
    void picture(const QString& name);
    /// What QML complained of, and what `auditView` finds now.
    QStringList problems();

    FakeAppearance appearance;

private:
    /// Makes the window as high as its content.
    void layOut();

    ui::Theme m_theme {appearance};
    ui::ViewEngine m_engine {m_theme};
    QQuickView m_window {&m_engine, nullptr};
    QStringList m_problems;
};

} // namespace netvane::test
