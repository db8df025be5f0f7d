#pragma once

#include "bus/bus_link.h"
#include "platform/verdict_outlet.h"

#include <QDBusAbstractAdaptor>

namespace netvane::desktop {

/// The verdict on the session bus: the read-only properties of org.netvane.Netvane1 at
/// /org/netvane/Netvane. The signal PropertiesChanged is sent when one of them changed.
class BusVerdict : public QDBusAbstractAdaptor, public platform::VerdictOutlet {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.netvane.Netvane1")
    Q_PROPERTY(QString Verdict READ verdict)
    Q_PROPERTY(QString Cause READ cause)
    Q_PROPERTY(QString Segment READ segment)
    Q_PROPERTY(QString Severity READ severity)
    Q_PROPERTY(QString Since READ since)
    Q_PROPERTY(QString Evidence READ evidence)

public:
    /// `object` is what the program shows at that path; it owns nothing here. Both outlive this.
    BusVerdict(QObject& object, bus::BusLink& sessionBus);

    void publish(const platform::PublishedVerdict& verdict) override;

    QString verdict() const { return m_published.verdict; }
    QString cause() const { return m_published.cause; }
    QString segment() const { return m_published.segment; }
    QString severity() const { return m_published.severity; }
    QString since() const { return m_published.since; }
    QString evidence() const { return m_published.evidence; }

private:
    bus::BusLink& m_sessionBus;
    platform::PublishedVerdict m_published;
};

} // namespace netvane::desktop
