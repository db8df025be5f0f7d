#pragma once

#include "timeline/source.h"
#include "ui/state/relative_time.h"
#include "ui/verdict/verdict_state.h"
#include "verdict/verdict.h"

#include <QStringList>

#include <chrono>
#include <memory>

namespace netvane::ui {

/// One link of the chain as it is drawn.
struct ChainItem {
    Q_GADGET
    QML_VALUE_TYPE(chainItem)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString word MEMBER word)
    /// May be empty.
    Q_PROPERTY(QString figure MEMBER figure)
    Q_PROPERTY(netvane::ui::mark::Value mark MEMBER mark)
    /// The symbol of the mark; empty where nothing is known.
    Q_PROPERTY(QString badge MEMBER badge)
    /// False behind a broken link.
    Q_PROPERTY(bool isReached MEMBER isReached)
    /// All of it for screen readers.
    Q_PROPERTY(QString summary READ summary)

public:
    QString symbol;
    QString name;
    QString word;
    QString figure;
    Mark mark = mark::Unknown;
    QString badge;
    bool isReached = true;

    static ChainItem of(const verdict::ChainLink& link, size_t place);
    QString summary() const;
    bool operator==(const ChainItem&) const = default;
};

/// A text and what belongs to it at the other end of its line.
struct DetailRow {
    Q_GADGET
    QML_VALUE_TYPE(detailRow)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString detail MEMBER detail)

public:
    QString text;
    QString detail;

    bool operator==(const DetailRow&) const = default;
};

/// Everything about the verdict, for the window that explains it. Follows the evidence only while
/// it is shown. Main thread.
// The base is spelled in full, see `PopoverState`.
class VerdictDetails : public netvane::ui::VerdictState {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    /// Whether the window can be seen; the view sets it.
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)
    /// Empty while there is no verdict.
    Q_PROPERTY(QString since MEMBER m_since NOTIFY timesChanged)
    Q_PROPERTY(QList<netvane::ui::ChainItem> chain MEMBER m_chain NOTIFY chainChanged)
    Q_PROPERTY(QList<netvane::ui::DetailRow> evidence MEMBER m_evidence NOTIFY evidenceChanged)
    /// That of each piece of evidence.
    Q_PROPERTY(QStringList ages MEMBER m_ages NOTIFY timesChanged)
    /// Other causes that were considered, the likelier first.
    Q_PROPERTY(QList<netvane::ui::DetailRow> others MEMBER m_others NOTIFY othersChanged)
    /// For a moment after `copy`.
    Q_PROPERTY(bool isCopied READ isCopied NOTIFY isCopiedChanged)

public:
    static constexpr std::chrono::milliseconds copiedTime {2000};

    /// All services exist and outlive this. Without a history nothing is said of it.
    explicit VerdictDetails(
        const services::Services& services, std::shared_ptr<timeline::Source> history = {});

    bool isShown() const { return m_times.isShown(); }
    void setShown(bool isShown);
    bool isCopied() const { return m_copied != nullptr; }

    /// Shows this one, judged `passed` ago, until the service has another.
    void showAll(const verdict::Verdict& verdict, std::chrono::steady_clock::duration passed = {});
    /// Puts all of it into the clipboard as plain text.
    Q_INVOKABLE void copy();
    /// Asks for the window with the time line.
    Q_INVOKABLE void showTimeLine() { Q_EMIT timeLineWanted(); }
    /// Asks for the window about the air.
    Q_INVOKABLE void showAir() { Q_EMIT airWanted(); }

Q_SIGNALS:
    void isShownChanged();
    void timesChanged();
    void chainChanged();
    void evidenceChanged();
    void othersChanged();
    void isCopiedChanged();
    void timeLineWanted();
    void airWanted();

private:
    template <typename Value>
    void show(Value& shown, const Value& current, void (VerdictDetails::*changed)());
    void follow();
    void readHistory();
    void tellTimes();

    const services::Services& m_services;
    const std::shared_ptr<timeline::Source> m_history;
    timeline::Week m_week; ///< nothing known until it is read
    verdict::Verdict m_verdict;
    std::chrono::system_clock::time_point m_judgedAt;
    RelativeTimes m_times;
    QString m_since;
    QList<ChainItem> m_chain;
    QList<DetailRow> m_evidence;
    QStringList m_ages;
    QList<DetailRow> m_others;
    std::unique_ptr<base::Timer> m_copied; ///< runs while `isCopied`
};

} // namespace netvane::ui
