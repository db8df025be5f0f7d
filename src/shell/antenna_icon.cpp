#include "shell/antenna_icon.h"

#include <QIconEngine>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

constexpr int kSizes[] = {16, 18, 22, 24, 32, 48, 64};

constexpr double kSeamOpacity = 0.75;
constexpr double kGrid = 18; // the drawing's own units

/// A mast with a dot, and two waves to either side.
void paintAntenna(QPainter& painter, const QColor& colour, double width)
{
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF centre(9, 7.5);
    for (const double radius : {4.0, 7.0}) {
        const QRectF circle(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
        painter.drawArc(circle, -45 * 16, 90 * 16);
        painter.drawArc(circle, 135 * 16, 90 * 16);
    }
    painter.drawLine(centre, {9, 16});
    painter.setBrush(colour);
    painter.drawEllipse(centre, 1.0, 1.0);
}

/// One stroke wider all around than the antenna itself.
QPixmap seam(int size, const QColor& colour)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / kGrid, size / kGrid);
    paintAntenna(painter, colour, 2.8);
    return pixmap;
}

QPixmap drawAntenna(int size, bool isDark)
{
    const QColor colour(isDark ? 0xf4f4f4 : 0x2a2a2a);
    const QColor opposite(isDark ? 0x000000 : 0xffffff);
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    // At once, or its strokes would show where they cross.
    painter.setOpacity(kSeamOpacity);
    painter.drawPixmap(0, 0, seam(size, opposite));
    painter.setOpacity(1);
    painter.scale(size / kGrid, size / kGrid);
    paintAntenna(painter, colour, 1.4);
    return pixmap;
}

/// Our drawing under a name: panels that look icons up by their name take the theme's and recolour
/// it; where the pixels are asked for (a system tray of X11), they are those that suit the desktop.
class NamedDrawing : public QIconEngine {
public:
    NamedDrawing(const QString& name, const QIcon& drawn)
        : m_name(name)
        , m_drawn(drawn)
    {
    }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State state) override
    {
        m_drawn.paint(painter, place, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return m_drawn.pixmap(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return m_drawn.availableSizes(mode, state);
    }
    QString iconName() override { return m_name; }
    bool isNull() override { return false; }
    QIconEngine* clone() const override { return new NamedDrawing(*this); }

private:
    QString m_name;
    QIcon m_drawn;
};

} // namespace

QIcon antennaIcon(bool isDark)
{
    QIcon drawn;
    for (const int size : kSizes)
        drawn.addPixmap(drawAntenna(size, isDark));
    const QString name = u"org.netvane.Netvane-symbolic"_s;
    // With a name that no theme has, some panels show nothing.
    return QIcon::hasThemeIcon(name) ? QIcon(new NamedDrawing(name, drawn)) : drawn;
}

} // namespace netvane::shell
