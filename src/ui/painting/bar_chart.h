#pragma once

#include "ui/state/accent.h"

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// One bar: what stands below it, how high it is, and its colour.
struct ChartBar {
    Q_GADGET
    QML_VALUE_TYPE(chartBar)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(int count MEMBER count)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)

public:
    QString label;
    int count = 0;
    accent::Value accent = accent::LightBlue;

    bool operator==(const ChartBar&) const = default;
};

/// Bars for counts, side by side at equal distances, with the count above each and an axis of whole
/// numbers at the left. Labels that would touch one another are thinned out, never those of a blue
/// bar, which is the one to be found.
class BarChart : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<netvane::ui::ChartBar> bars READ bars WRITE setBars NOTIFY barsChanged)
    /// Indexed by `Accent`.
    Q_PROPERTY(QList<QColor> accents MEMBER m_accents NOTIFY lookChanged)
    Q_PROPERTY(QColor countColor MEMBER m_countColor NOTIFY lookChanged)
    Q_PROPERTY(QColor axisColor MEMBER m_axisColor NOTIFY lookChanged)
    Q_PROPERTY(QColor lineColor MEMBER m_lineColor NOTIFY lookChanged)
    /// Of the axes; the counts have the same in their own size.
    Q_PROPERTY(QFont font MEMBER m_font NOTIFY lookChanged)

public:
    static constexpr int countPixelSize = 9;

    explicit BarChart(QQuickItem* parent = nullptr);

    QList<ChartBar> bars() const { return m_bars; }
    void setBars(const QList<ChartBar>& bars);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void barsChanged();
    void lookChanged();

private:
    QRectF plotArea(const QList<int>& marks) const;
    void paintAxis(QPainter& painter, const QRectF& plot, const QList<int>& marks) const;
    void paintBars(QPainter& painter, const QRectF& plot, int top) const;
    void paintLabels(QPainter& painter, const QRectF& plot, int top) const;
    QFont countFont() const;
    QRectF barRect(const QRectF& plot, qsizetype index, int top) const;

    QList<ChartBar> m_bars;
    QList<QColor> m_accents;
    QColor m_countColor;
    QColor m_axisColor;
    QColor m_lineColor;
    QFont m_font;
};

} // namespace netvane::ui
