#include "support/view_fixture.h"

#include "support/view_audit.h"

#include <QDir>
#include <QImage>
#include <QPainter>
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
        m_problems.append(error.toString());
    Q_ASSERT(m_window.rootObject());
    m_window.setColor(m_theme.controlBackground());
    m_window.resize(width, std::max(1, int(root().implicitHeight())));
    m_window.show();
    (void)QTest::qWaitForWindowExposed(&m_window);
    // What depends on the width is only known now.
    m_window.resize(width, std::max(1, int(root().implicitHeight())));
    QCoreApplication::processEvents();
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

QStringList ViewFixture::texts()
{
    QStringList texts;
    walk(root(), [&](QQuickItem& item) {
        if (item.inherits("QQuickText"))
            texts.append(item.property("text").toString());
    });
    return texts;
}

void ViewFixture::click(QQuickItem* item)
{
    const QPointF middle = item->mapToScene({item->width() / 2, item->height() / 2});
    QTest::mouseClick(&m_window, Qt::LeftButton, {}, middle.toPoint());
    QCoreApplication::processEvents();
}

QStringList ViewFixture::problems()
{
    layOut();
    return m_problems + auditView(root());
}

void ViewFixture::layOut()
{
    int height = 0;
    // A frame lays out what changed, which may change what is around it.
    for (int frame = 0; frame < 8 && height != m_window.height(); ++frame) {
        (void)m_window.grabWindow();
        height = m_window.height();
        m_window.resize(m_window.width(), std::max(1, int(std::ceil(root().implicitHeight()))));
        QCoreApplication::processEvents();
    }
}

void ViewFixture::picture(const QString& name)
{
    layOut();
    QList<QImage> images;
    for (const auto scheme : {platform::ColorScheme::Light, platform::ColorScheme::Dark}) {
        appearance.setColorScheme(scheme);
        m_window.setColor(m_theme.controlBackground());
        QCoreApplication::processEvents();
        images.append(m_window.grabWindow());
    }
    const QString folder = qEnvironmentVariable("NETVANE_PICTURES");
    if (folder.isEmpty())
        return;
    QImage both(images[0].width() * 2, images[0].height(), QImage::Format_RGB32);
    QPainter painter(&both);
    painter.drawImage(0, 0, images[0]);
    painter.drawImage(images[0].width(), 0, images[1]);
    painter.end();
    QDir().mkpath(folder);
    both.save(folder + u'/' + name + u".png"_s);
}

} // namespace netvane::test
