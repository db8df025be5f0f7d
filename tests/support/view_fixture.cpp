#include "support/view_fixture.h"

#include "support/view_audit.h"

#include <QDir>
#include <QQmlError>
#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace netvane::test {
namespace {

template <typename Visit>
void walk(QQuickItem& item, Visit visit)
{
    if (!item.isVisible())
        return;
    visit(item);
    for (auto* child : item.childItems())
        walk(*child, visit);
}

} // namespace

ViewFixture::ViewFixture(const QString& name, const QVariantMap& properties, int width)
{
    QObject::connect(
        &m_engine, &QQmlEngine::warnings, &m_engine, [this](const QList<QQmlError>& warnings) {
            for (const auto& warning : warnings)
                m_problems.append(warning.toString());
        });
    m_window.setInitialProperties(properties);
    m_window.setResizeMode(QQuickView::SizeRootObjectToView);
    m_window.setSource(QUrl(u"qrc:/qt/qml/Netvane/"_s + name + u".qml"_s));
    for (const auto& error : m_window.errors())
        qFatal("%s", qPrintable(error.toString()));
    m_window.resize(width, 600);
    m_window.show();
    (void)QTest::qWaitForWindowExposed(&m_window);
    (void)problems({});
}

QQuickItem* ViewFixture::find(const char* property, const QVariant& value)
{
    QQuickItem* found = nullptr;
    walk(root(), [&](QQuickItem& item) {
        if (!found && item.property(property) == value)
            found = &item;
    });
    return found;
}

QStringList ViewFixture::texts(const QString& below)
{
    QStringList texts;
    auto* top = below.isEmpty() ? &root() : find("objectName", below);
    if (top) {
        walk(*top, [&](QQuickItem& item) {
            if (item.inherits("QQuickText"))
                texts.append(item.property("text").toString());
        });
    }
    return texts;
}

void ViewFixture::click(const QString& text)
{
    auto* item = find("text", text);
    QVERIFY2(item, qPrintable(text));
    (void)problems({});
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(&m_window, Qt::LeftButton, {}, middle.toPoint());
    QCoreApplication::processEvents();
}

QStringList ViewFixture::problems(const QString& picture)
{
    // A frame lays out what changed, which may change what is around it.
    for (int height = 0; height != m_window.height();) {
        (void)m_window.grabWindow();
        height = m_window.height();
        m_window.resize(m_window.width(), std::max(1, int(std::ceil(root().implicitHeight()))));
        QCoreApplication::processEvents();
    }
    const QString folder = qEnvironmentVariable("NETVANE_PICTURES");
    for (const auto scheme : {platform::ColorScheme::Dark, platform::ColorScheme::Light}) {
        appearance.setColorScheme(scheme);
        m_window.setColor(m_theme.controlBackground());
        const QImage image = m_window.grabWindow();
        if (!folder.isEmpty() && !picture.isEmpty())
            image.save(QDir(folder).filePath(u"%1-%2.png"_s.arg(picture).arg(int(scheme))));
    }
    return m_problems + auditView(root());
}

} // namespace netvane::test
