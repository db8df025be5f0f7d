#pragma once

#include "platform/air.h"

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

namespace netvane::ui {

/// A network as a row of a table.
struct NetworkRow {
    Q_GADGET
    QML_VALUE_TYPE(networkRow)
    Q_PROPERTY(QStringList cells MEMBER cells)
    Q_PROPERTY(bool isOurs MEMBER isOurs)
    /// All of it for screen readers.
    Q_PROPERTY(QString summary MEMBER summary)

public:
    QStringList cells;
    bool isOurs = false;
    QString summary;

    bool operator==(const NetworkRow&) const = default;
};

/// The networks as rows of text that can be sorted and filtered; the strongest first at the
/// beginning. Main thread.
class NetworkTable : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(QStringList columns READ columns CONSTANT)
    /// The index of a column.
    Q_PROPERTY(int sortedBy READ sortedBy NOTIFY orderChanged)
    Q_PROPERTY(bool isDescending READ isDescending NOTIFY orderChanged)
    /// What a row must contain, in any column and in either case.
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QList<netvane::ui::NetworkRow> rows MEMBER m_rows NOTIFY rowsChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Column { Name, Bssid, Channel, Width, Signal, Load, Security, LastSeen };

    static QStringList columns();
    int sortedBy() const { return m_sortedBy; }
    bool isDescending() const { return m_isDescending; }
    const QString& filter() const { return m_filter; }
    int count() const { return int(m_rows.size()); }

    void setFilter(const QString& filter);
    /// By this column; the other way round if it is by this one already.
    Q_INVOKABLE void sortBy(int column);
    void show(const std::vector<platform::AirNetwork>& networks);

Q_SIGNALS:
    void orderChanged();
    void filterChanged();
    void rowsChanged();
    void countChanged();

private:
    void update();

    std::vector<platform::AirNetwork> m_networks;
    QList<NetworkRow> m_rows;
    int m_sortedBy = Signal;
    bool m_isDescending = true;
    QString m_filter;
};

} // namespace netvane::ui
