#include "ui/state/dns_state.h"

#include "base/decimal_text.h"
#include "probes/dns_service.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {

DNSState::DNSState(const probes::DNSService& service)
    : m_service(service)
{
    connect(&m_service, &probes::DNSService::lookupTimeChanged, this, &DNSState::cardChanged);
    connect(&m_service, &probes::DNSService::dnsServerChanged, this, &DNSState::serverTextChanged);
}

MetricCardContent DNSState::card() const
{
    MetricCardContent card {.icon = u"network"_s,
        .label = u"DNS Lookup"_s,
        .accent = Accent::Green,
        .series = seriesValues(m_service.history()),
        .helpText = u"Time to resolve a domain name to an IP address. Lower is better."_s};
    if (const auto& milliseconds = m_service.lookupTime())
        card.value = base::fixedDecimal(*milliseconds, 0) + u" ms"_s;
    return card;
}

QVariant DNSState::serverText() const
{
    const auto& server = m_service.dnsServer();
    return server ? QVariant(u"Router assigned: "_s + *server) : QVariant();
}

} // namespace netvane::ui
