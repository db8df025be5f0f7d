#pragma once

#include "ui/state/accent.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace netvane::probes {
class DNSService;
} // namespace netvane::probes

namespace netvane::ui {

class DashboardReadings;

/// One link of the path and its grade.
struct ConnectionItem {
    Q_GADGET
    QML_VALUE_TYPE(connectionItem)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString grade MEMBER grade)
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)

public:
    QString name;
    QString grade;
    Accent accent = Accent::Tertiary;

    bool operator==(const ConnectionItem&) const = default;
};

/// A word on each link of the path, so that the weak one shows. Main thread.
class ConnectionSummaryState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the dashboard")
    /// From the near end of the path to the far one.
    Q_PROPERTY(QList<netvane::ui::ConnectionItem> items READ items NOTIFY itemsChanged)

public:
    /// Both outlive this.
    ConnectionSummaryState(const DashboardReadings& readings, const probes::DNSService& dnsService);

    QList<ConnectionItem> items() const { return m_items; }

Q_SIGNALS:
    void itemsChanged();

private:
    void refresh();

    const DashboardReadings& m_readings;
    const probes::DNSService& m_dnsService;
    QList<ConnectionItem> m_items;
};

} // namespace netvane::ui
