#pragma once

#include "bus/bus_answer.h"
#include "bus/bus_link.h"

#include <vector>

namespace netvane::bus {

/// A service on a bus that may come, go, and come again, as the bus itself may. It is asked, and
/// only the answer to the last question counts. Main thread.
///
/// Signals are matched by path and interface and not by sender, since Qt would block to look up
/// the owner of the name. Whoever uses them takes them as a reason to ask again.
class BusService : public QObject {
    Q_OBJECT

public:
    /// `link` outlives this.
    BusService(BusLink& link, QString name, QString path, QString interface);

    /// Has `signalled` emitted for this signal, also after the bus comes back. Before `begin`.
    void listenTo(const QString& signal) { listenTo(m_path, m_interface, signal); }
    void listenTo(const QString& path, const QString& interface, const QString& signal);
    /// Begins to watch. If the state of the bus is already known, a signal is emitted at once.
    void begin();

    /// Whether anything can be asked at all.
    bool isBusThere() const { return m_link.state() == BusLink::State::Connected; }
    /// Only while the bus is there.
    const QDBusConnection& connection() const { return m_link.connection(); }

    /// A call that does not start the service.
    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) const;
    /// The call of Get (org.freedesktop.DBus.Properties); see `propertyValue`.
    QDBusMessage propertyCall(const QString& property) const;
    /// Passes on the answer unless there is a later question by then, or the service went away.
    /// Without a bus nothing is asked and nothing is passed on.
    void ask(const QDBusMessage& call, std::function<void(const QDBusMessage&)> take);
    /// No answer to an earlier question is passed on.
    void dropAnswers() { ++m_questions; }

Q_SIGNALS:
    /// The bus is there now, or another process took the name. Whether anybody has the name is not
    /// known before it is asked something.
    void reachable();
    /// Nobody has the name any more, or there is no bus.
    void gone();
    /// One of the signals that are listened to, from any sender.
    void signalled(const QDBusMessage& signal);

private Q_SLOTS:
    void takeOwnerChange(const QDBusMessage& signal);

private:
    struct Signal {
        QString path;
        QString interface;
        QString name;
    };

    void followLink();

    BusLink& m_link;
    const QString m_name;
    const QString m_path;
    const QString m_interface;
    std::vector<Signal> m_signals;
    int m_questions = 0;
};

} // namespace netvane::bus
