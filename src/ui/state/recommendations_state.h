#pragma once

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

namespace netvane::ui {

class DashboardReadings;

/// Advice on what the readings show. Main thread.
class RecommendationsState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(QStringList recommendations READ recommendations NOTIFY recommendationsChanged)

public:
    /// `readings` outlives this.
    explicit RecommendationsState(const DashboardReadings& readings);

    /// Empty when there is nothing to advise.
    QStringList recommendations() const { return m_recommendations; }

Q_SIGNALS:
    void recommendationsChanged();

private:
    void refresh();

    const DashboardReadings& m_readings;
    QStringList m_recommendations;
};

} // namespace netvane::ui
