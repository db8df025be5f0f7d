#pragma once

#include "timeline/source.h"

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

#include <memory>
#include <optional>

namespace netvane::base {
class Timer;
} // namespace netvane::base
namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

class HistoryPages;

/// The texts beside one lane.
struct LaneLabel {
    Q_GADGET
    QML_VALUE_TYPE(laneLabel)
    Q_PROPERTY(QString name MEMBER name)
    /// At the cursor, or else the last one; "–" in a gap.
    Q_PROPERTY(QString value MEMBER value)
    /// What the upper edge of the lane stands for.
    Q_PROPERTY(QString top MEMBER top)

public:
    QString name;
    QString value;
    QString top;

    bool operator==(const LaneLabel&) const = default;
};

/// A stretch of time as a row of a table.
struct TableRow {
    Q_GADGET
    QML_VALUE_TYPE(tableRow)
    Q_PROPERTY(QStringList cells MEMBER cells)
    /// All of it for screen readers.
    Q_PROPERTY(QString summary MEMBER summary)

public:
    QStringList cells;
    QString summary;

    bool operator==(const TableRow&) const = default;
};

/// The part of the history that the time line shows: its range, the values in it and those at the
/// cursor. Reads the history in the background, a range to each side more than can be seen, so that
/// panning draws at once. Main thread.
class TimeLineState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    /// Whether the window can be seen; the view sets it.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)
    Q_PROPERTY(QStringList rangeNames READ rangeNames CONSTANT)
    /// The chosen range; -1 after a zoom to another one.
    Q_PROPERTY(int range READ range NOTIFY viewChanged)
    Q_PROPERTY(bool isAtNow READ isAtNow NOTIFY viewChanged)
    /// "Tue 24 Nov, 18:00 – 19:00"
    Q_PROPERTY(QString period READ period NOTIFY viewChanged)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY chartChanged)
    Q_PROPERTY(QList<netvane::ui::LaneLabel> lanes MEMBER m_lanes NOTIFY lanesChanged)
    /// The moment at the cursor in words.
    Q_PROPERTY(QString moment MEMBER m_moment NOTIFY lanesChanged)
    Q_PROPERTY(netvane::ui::TableRow tableHead READ tableHead NOTIFY tableChanged)
    Q_PROPERTY(QList<netvane::ui::TableRow> table READ table NOTIFY tableChanged)
    Q_PROPERTY(netvane::ui::HistoryPages* pages READ pages CONSTANT)

public:
    /// All services exist and outlive this.
    TimeLineState(const services::Services& services, std::shared_ptr<timeline::Source> source);
    ~TimeLineState() override;

    bool isShown() const { return m_refresh != nullptr; }
    void setShown(bool isShown);
    static QStringList rangeNames();
    int range() const;
    bool isAtNow() const { return m_isAtNow; }
    QString period() const;
    bool isEmpty() const;
    TableRow tableHead() const;
    QList<TableRow> table() const;
    HistoryPages* pages() const { return m_pages.get(); }

    timeline::Milliseconds from() const { return m_to - m_span; }
    timeline::Milliseconds to() const { return m_to; }
    const timeline::Chart& chart() const { return *m_chart; }
    std::optional<timeline::Milliseconds> cursorTime() const { return m_cursor; }

    /// The range of this index, with its end kept.
    Q_INVOKABLE void show(int range);
    Q_INVOKABLE void goToNow();
    /// By this share of what can be seen; later for positive ones.
    Q_INVOKABLE void pan(qreal share);
    /// Shows `factor` times as much; what is at `place`, a share of the width, stays there.
    Q_INVOKABLE void zoom(qreal factor, qreal place);
    Q_INVOKABLE void pointTo(qreal place);
    Q_INVOKABLE void moveCursor(int steps);
    Q_INVOKABLE void clearCursor();

Q_SIGNALS:
    void isShownChanged();
    void viewChanged();
    void chartChanged();
    void cursorChanged();
    void lanesChanged();
    void tableChanged();

private:
    timeline::Milliseconds now() const;
    void setView(timeline::Milliseconds to, timeline::Milliseconds span);
    void setCursor(std::optional<timeline::Milliseconds> cursor);
    void refresh();
    void loadIfNeeded();
    void load();
    void take(std::shared_ptr<const timeline::Chart> chart);
    void fitFirst();
    void tell();

    const services::Services& m_services;
    const std::shared_ptr<timeline::Source> m_source;
    std::unique_ptr<HistoryPages> m_pages;
    timeline::Milliseconds m_to = 0;
    timeline::Milliseconds m_span;
    bool m_isAtNow = true;
    std::optional<timeline::Milliseconds> m_cursor;
    std::shared_ptr<const timeline::Chart> m_chart;
    bool m_hasFitted = false;
    bool m_isLoading = false;
    bool m_isStale = false; ///< what is being read is not what is wanted any more
    QList<LaneLabel> m_lanes;
    QString m_moment;
    std::unique_ptr<base::Timer> m_refresh; ///< runs while `isShown`
};

} // namespace netvane::ui
