#include "report/trace_session.h"

#include "report/verdict_object.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {

using diagnostics::TracerouteHop;

TraceSession::TraceSession(
    base::Clock& clock, platform::HopProbeFactory& probes, QString host, bool redact)
    : m_host(std::move(host))
    , m_redact(redact)
    , m_trace(clock, probes, diagnostics::TraceExtent::WholeWay)
{
    connect(&m_trace, &diagnostics::TracerouteService::hopsChanged, this, &TraceSession::hopFound);
    connect(&m_trace, &diagnostics::TracerouteService::isRunningChanged, this, [this] {
        if (!m_trace.isRunning())
            Q_EMIT finished();
    });
}

QString TraceSession::shownAddress(const QString& address) const
{
    if (!m_redact)
        return address;
    if (address == m_host)
        return u"[host 1]"_s;
    const auto& hops = m_trace.hops();
    const auto first = std::ranges::find(hops, address, &TracerouteHop::ipAddress);
    return u"[address %1]"_s.arg(std::distance(hops.begin(), first) + 1);
}

QString TraceSession::lineOf(const TracerouteHop& hop) const
{
    const auto number = QString::number(hop.hopNumber).rightJustified(2);
    if (!hop.latency)
        return number + u"  no answer"_s;
    const auto address = shownAddress(hop.ipAddress).leftJustified(24);
    return u"%1  %2 %3 ms"_s.arg(number, address).arg(*hop.latency, 0, 'f', 1);
}

QString TraceSession::lastHop() const
{
    return m_trace.hops().empty() ? QString() : lineOf(m_trace.hops().back());
}

QString TraceSession::text() const
{
    QString text;
    for (const auto& hop : m_trace.hops())
        text += lineOf(hop) + u'\n';
    return text + (isReached() ? u"The host answered"_s : m_trace.earlyEnd()) + u".\n"_s;
}

QByteArray TraceSession::json(std::chrono::system_clock::time_point now) const
{
    QJsonArray hops;
    for (const auto& hop : m_trace.hops()) {
        QJsonObject object {{u"hop"_s, hop.hopNumber}};
        if (hop.latency) {
            object.insert(u"address"_s, shownAddress(hop.ipAddress));
            object.insert(u"latencyMs"_s, rounded(*hop.latency));
        }
        hops.append(object);
    }
    QJsonObject object {{u"schema"_s, u"netvane.trace/1"_s}, {u"generated"_s, timeText(now)},
        {u"version"_s, QStringLiteral(NETVANE_VERSION)}, {u"host"_s, shownAddress(m_host)},
        {u"reached"_s, isReached()}, {u"hops"_s, hops}};
    if (!isReached())
        object.insert(u"end"_s, m_trace.earlyEnd());
    return QJsonDocument(object).toJson();
}

} // namespace netvane::report
