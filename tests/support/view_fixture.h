#pragma once

#include "simulated/desktop.h"
#include "ui/painting/theme.h"
#include "ui/view_engine.h"

#include <QQuickItem>
#include <QQuickView>

namespace netvane::test {

/// `root` and what is below it, in the order of the tree; hidden items are left out.
QList<QQuickItem*> visibleItems(QQuickItem& root);

/// The visible texts in the order of the tree.
QStringList visibleTexts(QQuickItem& root);

/// The faults of the visible items, one line each: a text that may be drawn as rich text, a text
/// that is cut (an ElidedText offers the whole of it), a control without a name for screen readers
/// or a control that Tab does not reach.
QStringList auditView(QQuickItem& root);

/// One view in a window of its own, rendered in software without a display.
class ViewFixture {
public:
    /// `name` is that of a QML file of the module; `properties` its required ones.
    explicit ViewFixture(const QString& name, const QVariantMap& properties = {}, int width = 388);

    QQuickItem& root() { return *m_window.rootObject(); }
    /// The outermost visible item that has the value in the property, or null.
    QQuickItem* find(const char* property, const QVariant& value);
    bool shows(const QString& text) { return find("text", text); }
    /// The visible texts in the order of the tree; only those below the item with this object name,
    /// if given.
    QStringList texts(const QString& below = {});
    /// Clicks the middle of the item that has the text.
    void click(const QString& text);
    /// Renders the view. Returns the warnings of QML so far and the faults that `auditView` finds.
    QStringList problems();

private:
    simulated::Appearance m_appearance;
    ui::Theme m_theme {m_appearance};
    ui::ViewEngine m_engine {m_theme};
    QQuickView m_window {&m_engine, nullptr};
    QStringList m_warnings;
};

} // namespace netvane::test
