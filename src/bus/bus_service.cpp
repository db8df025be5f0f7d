#include "bus/bus_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::bus {
namespace {

const QString kBus = u"org.freedesktop.DBus"_s;
const QString kBusPath = u"/org/freedesktop/DBus"_s;

} // namespace

BusService::BusService(BusLink& link, QString name, QString path, QString interface)
    : m_link(link)
    , m_name(std::move(name))
    , m_path(std::move(path))
    , m_interface(std::move(interface))
{
}

void BusService::listenTo(const QString& signal)
{
    m_signals.push_back({m_path, m_interface, signal, SLOT(takeOwnSignal(QDBusMessage))});
}

void BusService::listenTo(const QString& path, const QString& interface, const QString& signal)
{
    m_signals.push_back({path, interface, signal, SIGNAL(signalled(QDBusMessage))});
}

void BusService::begin()
{
    connect(&m_link, &BusLink::stateChanged, this, &BusService::followLink);
    followLink();
}

void BusService::followLink()
{
    if (m_link.state() == BusLink::State::Connecting)
        return;
    dropAnswers();
    m_owner.clear();
    if (!isBusThere()) {
        Q_EMIT gone();
        return;
    }
    QDBusConnection bus = connection();
    for (const Signal& signal : m_signals)
        bus.connect(QString(), signal.path, signal.interface, signal.name, this, signal.receiver);
    bus.connect(QString(), kBusPath, kBus, u"NameOwnerChanged"_s, {m_name}, u"sss"_s, this,
        SLOT(takeOwnerChange(QDBusMessage)));
    // Its answer comes before any signal of a later owner: the bus keeps the order.
    askBus(bus, ownerQuestion(m_name), kAnswerLimitMs, this, [this](const QDBusMessage& answer) {
        m_owner = isReply(answer, u"s"_s) ? answer.arguments().value(0).toString() : QString();
        if (isBusThere())
            Q_EMIT reachable();
    });
}

void BusService::takeOwnSignal(const QDBusMessage& signal)
{
    if (!m_owner.isEmpty() && signal.service() == m_owner)
        Q_EMIT signalled(signal);
}

void BusService::takeOwnerChange(const QDBusMessage& signal)
{
    // Only the bus has this name. What was under way when the link went may still arrive.
    if (signal.service() != kBus || !isBusThere())
        return;
    dropAnswers();
    m_owner = signal.arguments().value(2).toString();
    if (m_owner.isEmpty())
        Q_EMIT gone();
    else
        Q_EMIT reachable();
}

QDBusMessage BusService::call(const QString& method, const QVariantList& arguments) const
{
    auto call = QDBusMessage::createMethodCall(m_name, m_path, m_interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

QDBusMessage BusService::propertyCall(const QString& property) const
{
    auto call = QDBusMessage::createMethodCall(
        m_name, m_path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << m_interface << property;
    call.setAutoStartService(false);
    return call;
}

void BusService::ask(
    const QDBusMessage& call, std::function<void(const QDBusMessage&)> take, int limitMs)
{
    if (!isBusThere())
        return;
    askBus(connection(), call, limitMs, this,
        [this, question = ++m_questions, take = std::move(take)](const QDBusMessage& answer) {
            if (question == m_questions)
                take(answer);
        });
}

} // namespace netvane::bus
