#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::services {
struct Services;
} // namespace netvane::services
namespace netvane::verdict {
class VerdictService;
struct Verdict;
} // namespace netvane::verdict

/// How good something is. Each has a symbol whose shape differs, and `Theme.marks` has the colour
/// of each, in this order.
namespace netvane::ui::mark {
Q_NAMESPACE
QML_NAMED_ELEMENT(Mark)

enum Value { Unknown, Fine, Notice, Poor, Broken };
Q_ENUM_NS(Value)

} // namespace netvane::ui::mark

namespace netvane::ui {

using Mark = mark::Value;

/// The symbol of a mark.
QString symbolOf(Mark mark);

/// What is wrong with the connection, in a sentence. Main thread.
class VerdictState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(netvane::ui::mark::Value mark READ mark NOTIFY verdictChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY verdictChanged)
    Q_PROPERTY(QString sentence READ sentence NOTIFY verdictChanged)
    /// May be empty.
    Q_PROPERTY(QString advice READ advice NOTIFY verdictChanged)

public:
    /// The verdict service exists and outlives this.
    explicit VerdictState(const services::Services& services);

    Mark mark() const { return m_mark; }
    QString symbol() const { return symbolOf(m_mark); }
    const QString& sentence() const { return m_sentence; }
    const QString& advice() const { return m_advice; }

    /// Shows this one until the service has another.
    void show(const verdict::Verdict& verdict);
    /// Asks for the window that explains the verdict.
    Q_INVOKABLE void explain() { Q_EMIT explanationWanted(); }

Q_SIGNALS:
    void verdictChanged();
    void explanationWanted();

private:
    Mark m_mark = mark::Unknown;
    QString m_sentence;
    QString m_advice;
};

} // namespace netvane::ui
