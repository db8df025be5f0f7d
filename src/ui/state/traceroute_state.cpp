#include "ui/state/traceroute_state.h"

#include "diagnostics/traceroute_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

QString TracerouteRow::summary() const
{
    QStringList parts {u"Hop "_s + number, name};
    if (address.isValid())
        parts.append(address.toString());
    parts.append(isAnswered ? latency : u"no answer"_s);
    return parts.join(u", "_s);
}

TracerouteRow tracerouteRow(const diagnostics::TracerouteHop& hop)
{
    return {.number = QString::number(hop.hopNumber),
        .name = hop.hostname.value_or(hop.ipAddress),
        .address = hop.hostname ? QVariant(hop.ipAddress) : QVariant(),
        .latency = hop.latency ? QString::number(*hop.latency, 'f', 1) + u" ms"_s : u"*"_s,
        .isAnswered = hop.latency.has_value()};
}

TracerouteState::TracerouteState(diagnostics::TracerouteService& service)
    : m_service(service)
    , m_targetInput(diagnostics::TracerouteService::defaultTarget())
{
    using Service = diagnostics::TracerouteService;
    connect(&m_service, &Service::isRunningChanged, this, &TracerouteState::isRunningChanged);
    connect(&m_service, &Service::hopsChanged, this, &TracerouteState::hopsChanged);
}

bool TracerouteState::isRunning() const
{
    return m_service.isRunning();
}

QList<TracerouteRow> TracerouteState::hops() const
{
    QList<TracerouteRow> rows;
    for (const auto& hop : m_service.hops())
        rows.append(tracerouteRow(hop));
    return rows;
}

const QString& TracerouteState::note() const
{
    return m_service.earlyEnd();
}

void TracerouteState::setTargetInput(const QString& input)
{
    if (std::exchange(m_targetInput, input) != input)
        Q_EMIT targetInputChanged();
}

void TracerouteState::run()
{
    m_service.startTrace(
        m_targetInput.isEmpty() ? diagnostics::TracerouteService::defaultTarget() : m_targetInput);
}

void TracerouteState::stop()
{
    m_service.stopTrace();
}

} // namespace netvane::ui
