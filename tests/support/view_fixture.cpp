#include "support/view_fixture.h"

#include <QAccessible>
#include <QQmlError>
#include <QTest>

#include <cmath>

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
    for (const auto* card = item.parentItem(); card; card = card->parentItem()) {
        const double right = item.mapToItem(card, {item.width(), 0}).x();
        if (card->property("hasShadow").isValid() && right > card->width() + kRounding)
            return u"is outside of its card"_s;
    }
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

QStringList visibleTexts(QQuickItem& root)
{
    QStringList texts;
    for (const auto* item : visibleItems(root)) {
        if (item->inherits("QQuickText"))
            texts.append(item->property("text").toString());
    }
    return texts;
}

QStringList auditView(QQuickItem& root)
{
    QStringList flaws;
    for (auto* item : visibleItems(root)) {
        if (const QString flaw = flawOf(*item); !flaw.isEmpty())
            flaws.append(flaw + u": "_s + QString::fromLatin1(item->metaObject()->className())
                + u" '"_s + item->property("text").toString().left(60) + u'\'');
    }
    return flaws;
}

ViewFixture::ViewFixture(const QString& name, const QVariantMap& properties, int width)
{
    QObject::connect(
        &m_engine, &QQmlEngine::warnings, &m_engine, [this](const QList<QQmlError>& warnings) {
            for (const auto& warning : warnings)
                m_warnings.append(warning.toString());
        });
    m_window.setInitialProperties(properties);
    m_window.setResizeMode(QQuickView::SizeRootObjectToView);
    m_window.setSource(QUrl(u"qrc:/qt/qml/Netvane/"_s + name + u".qml"_s));
    for (const auto& error : m_window.errors())
        qFatal("%s", qPrintable(error.toString()));
    m_window.resize(width, 600);
    m_window.show();
    (void)QTest::qWaitForWindowExposed(&m_window);
    (void)problems();
}

QQuickItem* ViewFixture::find(const char* property, const QVariant& value)
{
    for (auto* item : visibleItems(root())) {
        if (item->property(property) == value)
            return item;
    }
    return nullptr;
}

QStringList ViewFixture::texts(const QString& below)
{
    auto* top = below.isEmpty() ? &root() : find("objectName", below);
    return top ? visibleTexts(*top) : QStringList();
}

void ViewFixture::click(const QString& text)
{
    auto* item = find("text", text);
    QVERIFY2(item, qPrintable(text));
    (void)problems();
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(&m_window, Qt::LeftButton, {}, middle.toPoint());
    QCoreApplication::processEvents();
}

QStringList ViewFixture::problems()
{
    // Each frame lays out what changed, which may change other items.
    for (int height = 0; height != m_window.height();) {
        (void)m_window.grabWindow();
        height = m_window.height();
        m_window.resize(m_window.width(), std::max(1, int(std::ceil(root().implicitHeight()))));
        QCoreApplication::processEvents();
    }
    return m_warnings + auditView(root());
}

} // namespace netvane::test
