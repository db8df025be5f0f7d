#include "app/antenna_icon.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace netvane::app {
namespace {

constexpr int kSizes[] = {16, 18, 22, 24, 32, 48, 64};

/// A mast with a dot, and two waves to either side, on an 18 by 18 grid.
QPixmap drawAntenna(int size, const QColor& colour)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 18.0, size / 18.0);
    painter.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF centre(9, 7.5);
    for (const double radius : {4.0, 7.0}) {
        const QRectF circle(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
        painter.drawArc(circle, -45 * 16, 90 * 16);
        painter.drawArc(circle, 135 * 16, 90 * 16);
    }
    painter.drawLine(centre, {9, 16});
    painter.setBrush(colour);
    painter.drawEllipse(centre, 1.0, 1.0);
    return pixmap;
}

} // namespace

QIcon antennaIcon(const QColor& colour)
{
    QIcon drawn;
    for (const int size : kSizes)
        drawn.addPixmap(drawAntenna(size, colour));
    return QIcon::fromTheme(u"org.netvane.Netvane-symbolic"_s, drawn);
}

} // namespace netvane::app
