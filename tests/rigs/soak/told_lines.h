#pragma once

#include <QMap>
#include <QStringList>

namespace netvane::soak {

/// The log lines of the run, Qt's own included, against the list of what such a run may say.
class ToldLines {
public:
    void take(const QStringList& lines);

    qint64 count() const { return m_count; }
    /// The first few that are on no list, word by word.
    const QStringList& unexpected() const { return m_unexpected; }
    /// How many there were of each kind, by the beginning of the kind's pattern.
    void print() const;

private:
    qint64 m_count = 0;
    QMap<QString, qint64> m_kinds;
    QStringList m_unexpected;
};

} // namespace netvane::soak
