#include "desktop/bus_verdict.h"

#include <QDBusMessage>
#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {

BusVerdict::BusVerdict(QObject& object, bus::BusLink& sessionBus)
    : QDBusAbstractAdaptor(&object)
    , m_sessionBus(sessionBus)
{
}

void BusVerdict::publish(const platform::PublishedVerdict& verdict)
{
    QVariantMap changed;
    const auto add = [&](const QString& name, QString platform::PublishedVerdict::*field) {
        if (m_published.*field != verdict.*field)
            changed.insert(name, verdict.*field);
    };
    using platform::PublishedVerdict;
    add(u"Verdict"_s, &PublishedVerdict::verdict);
    add(u"Cause"_s, &PublishedVerdict::cause);
    add(u"Segment"_s, &PublishedVerdict::segment);
    add(u"Severity"_s, &PublishedVerdict::severity);
    add(u"Since"_s, &PublishedVerdict::since);
    add(u"Evidence"_s, &PublishedVerdict::evidence);
    m_published = verdict;
    if (changed.isEmpty() || m_sessionBus.state() != bus::BusLink::State::Connected)
        return;
    auto signal = QDBusMessage::createSignal(
        u"/org/netvane/Netvane"_s, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s);
    signal << u"org.netvane.Netvane1"_s << changed << QStringList();
    QDBusConnection(m_sessionBus.connection()).send(signal);
}

} // namespace netvane::desktop
