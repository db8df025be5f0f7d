#pragma once

#include "ui/state/metric_card_content.h"

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::probes {
class DNSService;
} // namespace netvane::probes

namespace netvane::ui {

/// How long the look-up of a name takes, and who is asked. Main thread.
class DNSState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    Q_PROPERTY(netvane::ui::MetricCardContent card READ card NOTIFY cardChanged)
    /// Undefined until the first look at the configuration.
    Q_PROPERTY(QVariant serverText READ serverText NOTIFY serverTextChanged)

public:
    /// `service` outlives this.
    explicit DNSState(const probes::DNSService& service);

    MetricCardContent card() const;
    QVariant serverText() const;

Q_SIGNALS:
    void cardChanged();
    void serverTextChanged();

private:
    const probes::DNSService& m_service;
};

} // namespace netvane::ui
