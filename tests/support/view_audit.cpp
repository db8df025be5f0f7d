#include "support/view_audit.h"

#include <QAccessible>
#include <QQuickItem>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

constexpr double kRounding = 1.0; ///< points by which a text may be larger than its box
constexpr int kElideMiddle = 2; ///< QQuickText::ElideMiddle

QString flawOfText(const QQuickItem& item)
{
    const auto number = [&](const char* name) { return item.property(name).toDouble(); };
    if (item.property("textFormat").toInt() != Qt::PlainText)
        return u"may be rich text"_s;
    if (item.property("truncated").toBool())
        return item.property("elide").toInt() == kElideMiddle ? QString() : u"is cut"_s;
    const bool fits = number("contentWidth") <= item.width() + kRounding
        && number("contentHeight") <= item.height() + kRounding;
    return fits || item.property("text") == QString() ? QString() : u"does not fit"_s;
}

QString flawOf(QQuickItem& item)
{
    if (item.inherits("QQuickText"))
        return flawOfText(item);
    if (!item.inherits("QQuickAbstractButton") && !item.inherits("QQuickTextField"))
        return {};
    const auto* interface = QAccessible::queryAccessibleInterface(&item);
    if (!interface || interface->text(QAccessible::Name).isEmpty())
        return u"has no name"_s;
    return item.isEnabled() && !item.activeFocusOnTab() ? u"is not reached by Tab"_s : QString();
}

} // namespace

QString describe(const QQuickItem& item)
{
    return QString::fromLatin1(item.metaObject()->className()) + u" '"_s
        + item.property("text").toString().left(60) + u'\'';
}

QList<QQuickItem*> visibleItems(QQuickItem& root)
{
    QList<QQuickItem*> items;
    if (!root.isVisible())
        return items;
    items.append(&root);
    for (auto* child : root.childItems())
        items += visibleItems(*child);
    return items;
}

QStringList auditView(QQuickItem& root)
{
    QStringList flaws;
    for (auto* item : visibleItems(root)) {
        if (const QString flaw = flawOf(*item); !flaw.isEmpty())
            flaws.append(flaw + u": "_s + describe(*item));
    }
    return flaws;
}

} // namespace netvane::test
