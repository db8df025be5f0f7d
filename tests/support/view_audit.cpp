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

QString flawOfControl(QQuickItem& item)
{
    const auto* interface = QAccessible::queryAccessibleInterface(&item);
    if (!interface || interface->text(QAccessible::Name).isEmpty())
        return u"has no name"_s;
    return item.isEnabled() && !item.activeFocusOnTab() ? u"is out of the keyboard's reach"_s
                                                        : QString();
}

} // namespace

QString describe(const QQuickItem& item)
{
    return QString::fromLatin1(item.metaObject()->className()) + u" '"_s
        + item.property("text").toString().left(60) + u'\'';
}

QStringList auditView(QQuickItem& root)
{
    QStringList flaws;
    if (!root.isVisible())
        return flaws;
    QString flaw;
    if (root.inherits("QQuickText"))
        flaw = flawOfText(root);
    else if (root.inherits("QQuickAbstractButton") || root.inherits("QQuickTextField"))
        flaw = flawOfControl(root);
    if (!flaw.isEmpty())
        flaws.append(flaw + u": "_s + describe(root));
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
