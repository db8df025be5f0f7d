#include "report/redaction.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {
namespace {

/// Numbers texts of one kind as they come.
class Placeholders {
public:
    explicit Placeholders(QString kind)
        : m_kind(std::move(kind))
    {
    }
    void replace(std::optional<QString>& text)
    {
        if (!text)
            return;
        if (!m_known.contains(*text))
            m_known.append(*text);
        text = u"[%1 %2]"_s.arg(m_kind).arg(m_known.indexOf(*text) + 1);
    }

private:
    const QString m_kind;
    QStringList m_known;
};

void redact(platform::AirNetwork& network, Placeholders& names, Placeholders& stations)
{
    names.replace(network.ssid);
    stations.replace(network.bssid);
    stations.replace(network.deviceAddress);
    network.mobilityDomain.reset();
}

} // namespace

platform::AirReading redacted(platform::AirReading reading)
{
    static const QRegularExpression s_address(u"[0-9a-f]{12}"_s);
    Placeholders names(u"network"_s);
    Placeholders stations(u"station"_s);
    if (auto& link = reading.link) {
        names.replace(link->ssid);
        stations.replace(link->bssid);
        for (auto& one : link->links)
            stations.replace(one.bssid);
        if (link->accessPoint)
            redact(*link->accessPoint, names, stations);
    }
    for (auto& network : reading.networks)
        redact(network, names, stations);
    for (size_t i = 0; i < reading.adapters.size(); ++i) {
        if (reading.adapters[i].name.contains(s_address))
            reading.adapters[i].name = u"[adapter %1]"_s.arg(i + 1);
    }
    return reading;
}

insights::ReportInputs redacted(insights::ReportInputs input)
{
    // A report holds one of each. They are numbered and not hashed: names of networks are short
    // enough to be found again from their hash.
    if (input.wifi && input.wifi->ssid)
        input.wifi->ssid = u"[network 1]"_s;
    // "Unknown" is what stands there without any server.
    if (input.dnsServer && input.dnsServer != u"Unknown"_s)
        input.dnsServer = u"[address 1]"_s;
    input.isRedacted = true;
    return input;
}

} // namespace netvane::report
