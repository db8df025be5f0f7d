#pragma once

#include "probes/network_metrics.h"
#include "ui/state/metric_card_content.h"

#include <QObject>
#include <QtQmlIntegration>

#include <optional>
#include <vector>

namespace netvane::ui {

/// What a telephone call would be worth, as its card says it.
struct MosCardContent {
    Q_GADGET
    QML_VALUE_TYPE(mosCardContent)
    /// Without a score there is no card.
    Q_PROPERTY(bool isPresent READ isPresent)
    Q_PROPERTY(QString score READ scoreText)
    Q_PROPERTY(QString quality MEMBER quality)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)

public:
    std::optional<QString> score; ///< of 5.0
    QString quality;
    Accent accent = Accent::Red;

    bool isPresent() const { return score.has_value(); }
    QString scoreText() const { return score.value_or(QString()); }
    bool operator==(const MosCardContent&) const = default;
};

/// `score` is a mean opinion score, `quality` what people read for it.
MosCardContent makeMosCard(double score, const QString& quality);

/// Latency, jitter and loss towards one target. Main thread.
class PerformanceSectionState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
    Q_PROPERTY(QString icon READ icon CONSTANT)
    /// Without a reading there is no section.
    Q_PROPERTY(bool isPresent READ isPresent NOTIFY contentChanged)
    /// Round trip, jitter and loss, always in this order and number.
    Q_PROPERTY(QList<netvane::ui::MetricCardContent> cards READ cards NOTIFY contentChanged)
    Q_PROPERTY(netvane::ui::MosCardContent mosCard READ mosCard NOTIFY contentChanged)

public:
    static constexpr size_t maxPoints = 10; ///< of each graph

    struct Heading {
        QString title;
        QString subtitle;
        QString icon; ///< a symbol's name
    };

    /// `history` is the live one of the target, oldest first, and outlives this.
    PerformanceSectionState(Heading heading, const std::vector<probes::NetworkMetrics>& history);

    QString title() const { return m_heading.title; }
    QString subtitle() const { return m_heading.subtitle; }
    QString icon() const { return m_heading.icon; }
    bool isPresent() const { return m_content.isPresent; }
    QList<MetricCardContent> cards() const { return m_content.cards; }
    MosCardContent mosCard() const { return m_content.mosCard; }

    /// Takes over a reading; `isOnScreen` is whether the place of the section can be seen.
    void show(const std::optional<probes::NetworkMetrics>& metrics, bool isOnScreen);

Q_SIGNALS:
    void contentChanged();

private:
    struct Content {
        bool isPresent = false;
        QList<MetricCardContent> cards;
        MosCardContent mosCard;
        bool operator==(const Content&) const = default;
    };

    void updateHistories();
    Content makeContent(const std::optional<probes::NetworkMetrics>& metrics) const;

    const Heading m_heading;
    const std::vector<probes::NetworkMetrics>& m_history;
    size_t m_historyCount = 0; ///< when the graphs were last made
    bool m_isOnScreen = false;
    QList<double> m_pingHistory; ///< ms
    QList<double> m_jitterHistory; ///< ms
    QList<double> m_lossHistory; ///< percent
    Content m_content;
};

} // namespace netvane::ui
