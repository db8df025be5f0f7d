#include "ui/painting/symbol.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

Symbol::Symbol(QQuickItem* parent)
    : QQuickPaintedItem(parent)
{
    setImplicitSize(m_size, m_size);
    setAntialiasing(true);
    connect(this, &Symbol::lookChanged, this, [this] {
        setImplicitSize(m_size, m_size);
        update();
    });
}

void Symbol::paint(QPainter* painter)
{
    QFile file(u":/netvane/symbols/"_s + m_name + u".svg"_s);
    if (!file.open(QIODevice::ReadOnly))
        return;
    // The colour goes into the drawing itself: tinting a picture afterwards would need a second
    // one.
    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", m_color.name().toLatin1());
    QSvgRenderer renderer(drawing);
    painter->setOpacity(m_color.alphaF());
    renderer.render(painter, boundingRect());
}

} // namespace netvane::ui
