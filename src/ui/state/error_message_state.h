#pragma once

#include <QObject>
#include <QVariant>
#include <QtQmlIntegration>

namespace netvane::ui {

class DashboardReadings;

/// What the sampler of the link has to tell the user. Main thread.
class ErrorMessageState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    /// Undefined when all is well.
    Q_PROPERTY(QVariant message READ message NOTIFY messageChanged)

public:
    /// `readings` outlives this.
    explicit ErrorMessageState(const DashboardReadings& readings);

    QVariant message() const;

Q_SIGNALS:
    void messageChanged();

private:
    const DashboardReadings& m_readings;
};

} // namespace netvane::ui
