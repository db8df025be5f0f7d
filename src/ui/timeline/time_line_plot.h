#pragma once

#include "timeline/chart.h"
#include "ui/timeline/time_line_state.h"

#include <QColor>
#include <QFont>
#include <QPolygonF>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace netvane::ui {

/// Draws the part of a chart that its state shows: the verdicts, the marks of what happened, and
/// the lanes below each other. The texts beside the lanes are the view's. What is drawn twice is
/// told twice: a worse verdict is a higher bar, and each kind of mark has a shape of its own.
class TimeLinePlot : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(netvane::ui::TimeLineState* timeLine READ timeLine WRITE setTimeLine NOTIFY
            timeLineChanged REQUIRED)
    /// The upper edge of the first lane, and from one lane to the next.
    Q_PROPERTY(qreal laneTop MEMBER m_laneTop NOTIFY lookChanged)
    Q_PROPERTY(qreal lanePitch MEMBER m_lanePitch NOTIFY lookChanged)
    Q_PROPERTY(QColor lineColor MEMBER m_lineColor NOTIFY lookChanged)
    Q_PROPERTY(QColor gridColor MEMBER m_gridColor NOTIFY lookChanged)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY lookChanged)
    Q_PROPERTY(QColor surface MEMBER m_surface NOTIFY lookChanged)
    /// As `Theme.marks`.
    Q_PROPERTY(QList<QColor> markColors MEMBER m_markColors NOTIFY lookChanged)
    Q_PROPERTY(QFont font MEMBER m_font NOTIFY lookChanged)

public:
    static constexpr qreal verdictHeight = 24;
    static constexpr qreal marksHeight = 22;

    explicit TimeLinePlot(QQuickItem* parent = nullptr);

    TimeLineState* timeLine() const { return m_timeLine; }
    void setTimeLine(TimeLineState* timeLine);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void timeLineChanged();
    void lookChanged();

private:
    double xOf(timeline::Milliseconds at) const;
    QRectF boxOf(size_t lane) const;
    QColor colorOf(verdict::Severity severity) const;
    void paintGrid(QPainter& painter) const;
    void paintVerdicts(QPainter& painter) const;
    void paintMarks(QPainter& painter) const;
    void paintLane(QPainter& painter, const timeline::Lane& lane, const QRectF& box) const;
    void paintRun(QPainter& painter, const QPolygonF& line, const QPolygonF& far) const;
    void paintBars(QPainter& painter, const timeline::Lane& lane, const QRectF& box) const;
    void paintCursor(QPainter& painter) const;

    QPointer<TimeLineState> m_timeLine;
    qreal m_laneTop = 0;
    qreal m_lanePitch = 60;
    QColor m_lineColor, m_gridColor, m_textColor, m_surface;
    QList<QColor> m_markColors;
    QFont m_font;
};

} // namespace netvane::ui
