#include "support/view_audit.h"

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

constexpr double kRounding = 1.0; ///< points by which a text may be larger than its box
constexpr int kElideMiddle = 2; ///< QQuickText::ElideMiddle
constexpr int kMostControls = 200;

QString accessibleName(QQuickItem& item)
{
    const auto* interface = QAccessible::queryAccessibleInterface(&item);
    return interface ? interface->text(QAccessible::Name) : QString();
}

void auditText(QQuickItem& item, QStringList& flaws)
{
    const auto number = [&](const char* name) { return item.property(name).toDouble(); };
    if (item.property("textFormat").toInt() != Qt::PlainText)
        flaws.append(u"may be rich text: "_s + describe(item));
    const bool isElided = item.property("truncated").toBool();
    if (isElided && item.property("elide").toInt() != kElideMiddle)
        flaws.append(u"is cut: "_s + describe(item));
    if (!isElided && item.property("text") != QString()
        && (number("contentWidth") > item.width() + kRounding
            || number("contentHeight") > item.height() + kRounding))
        flaws.append(u"does not fit: "_s + describe(item));
}

void auditControl(QQuickItem& item, QStringList& flaws)
{
    if (accessibleName(item).isEmpty())
        flaws.append(u"has no name: "_s + describe(item));
    if (item.isEnabled() && !item.activeFocusOnTab())
        flaws.append(u"is out of the keyboard's reach: "_s + describe(item));
}

} // namespace

QString describe(const QQuickItem& item)
{
    const QString text = item.property("text").toString().left(60);
    return QString::fromLatin1(item.metaObject()->className()) + u" '"_s + text + u'\'';
}

QStringList auditView(QQuickItem& root)
{
    QStringList flaws;
    if (!root.isVisible())
        return flaws;
    if (root.inherits("QQuickText"))
        auditText(root, flaws);
    if (root.inherits("QQuickAbstractButton") || root.inherits("QQuickTextField"))
        auditControl(root, flaws);
    for (auto* child : root.childItems())
        flaws.append(auditView(*child));
    return flaws;
}

QList<QQuickItem*> tabChain(QQuickItem& root)
{
    QList<QQuickItem*> chain;
    while (chain.size() < kMostControls) {
        QTest::keyClick(root.window(), Qt::Key_Tab);
        auto* item = root.window()->activeFocusItem();
        if (!item || chain.contains(item))
            break;
        chain.append(item);
    }
    return chain;
}

} // namespace netvane::test
