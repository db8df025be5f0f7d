#pragma once

#include "probes/metric_data_point.h"
#include "ui/state/accent.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <QtQmlIntegration>

#include <optional>
#include <vector>

namespace netvane::ui {

/// What one metric card shows. A view has a fixed number of cards, each of which stays away while
/// its value is absent; so a card that is there keeps what the user did to it when values change.
struct MetricCardContent {
    Q_GADGET
    QML_VALUE_TYPE(metricCardContent)
    /// Without a value there is no card.
    Q_PROPERTY(bool isPresent READ isPresent)
    Q_PROPERTY(QString icon MEMBER icon)
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString value READ valueText)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)
    Q_PROPERTY(QList<double> series MEMBER series)
    /// Undefined when there is nothing to explain.
    Q_PROPERTY(QVariant helpText MEMBER helpText)

public:
    QString icon; ///< a symbol's name
    QString label;
    std::optional<QString> value; ///< with its unit
    Accent accent = Accent::Green;
    QList<double> series; ///< oldest first
    QVariant helpText;

    bool isPresent() const { return value.has_value(); }
    QString valueText() const { return value.value_or(QString()); }
    bool operator==(const MetricCardContent&) const = default;
};

/// The values of a series without their times, which no graph draws.
QList<double> seriesValues(const std::vector<probes::MetricDataPoint>& points);

} // namespace netvane::ui
