#pragma once

#include "bus/bus_answer.h"
#include "bus/bus_link.h"

#include <vector>

namespace netvane::bus {

/// A service on a bus that may come, go, and come again, as the bus itself may. It is asked, and
/// only the answer to the last question counts. Main thread.
///
/// Its own signals are taken from its owner alone. They are matched by path and interface and
/// compared with the owner here, since Qt would block to look up the owner of the name. Those that
/// are listened to by another path come from any sender: a reason to ask again, and no more.
class BusService : public QObject {
    Q_OBJECT

public:
    /// `link` outlives this.
    BusService(BusLink& link, QString name, QString path, QString interface);

    /// Has `signalled` emitted for this signal, also after the bus comes back. Before `begin`.
    void listenTo(const QString& signal);
    void listenTo(const QString& path, const QString& interface, const QString& signal);
    /// Begins to watch. If the state of the bus is already known, a signal is emitted at once.
    void begin();

    /// Whether anything can be asked at all.
    bool isBusThere() const { return m_link.state() == BusLink::State::Connected; }
    /// Only while the bus is there.
    const QDBusConnection& connection() const { return m_link.connection(); }

    /// The unique name of who has the name; empty while nobody has it.
    const QString& owner() const { return m_owner; }

    /// A call that does not start the service.
    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) const;
    /// The call of Get (org.freedesktop.DBus.Properties); see `propertyValue`.
    QDBusMessage propertyCall(const QString& property) const;
    /// Passes on the answer unless there is a later question by then, or the service went away.
    /// Without a bus nothing is asked and nothing is passed on.
    void ask(const QDBusMessage& call, std::function<void(const QDBusMessage&)> take,
        int limitMs = kAnswerLimitMs);
    /// No answer to an earlier question is passed on.
    void dropAnswers() { ++m_questions; }

Q_SIGNALS:
    /// The bus is there now, and `owner` is known, or another process took the name.
    void reachable();
    /// Nobody has the name any more, or there is no bus.
    void gone();
    /// One of the signals that are listened to.
    void signalled(const QDBusMessage& signal);

private Q_SLOTS:
    void takeOwnSignal(const QDBusMessage& signal);
    void takeOwnerChange(const QDBusMessage& signal);

private:
    struct Signal {
        QString path;
        QString interface;
        QString name;
        const char* receiver; ///< a member of this
    };

    void followLink();

    BusLink& m_link;
    const QString m_name;
    const QString m_path;
    const QString m_interface;
    std::vector<Signal> m_signals;
    QString m_owner;
    int m_questions = 0;
};

} // namespace netvane::bus
