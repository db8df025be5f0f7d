#include "report/verdict_object.h"

#include "report/json_fields.h"
#include "verdict/track.h"

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::report {
namespace {

using verdict::Evidence;
using verdict::Outcomes;
using verdict::Verdict;

void addTrack(Fields& fields, const Outcomes& outcomes)
{
    const auto track = verdict::trackOf(outcomes);
    if (track.asked == 0)
        return;
    fields.add(u"answers"_s, track.isAlive()).add(u"latencyMs"_s, track.medianMs);
    if (const auto loss = verdict::lossSince(outcomes, {}); loss.packets > 0)
        fields.add(u"lossPercent"_s, rounded(loss.percent()));
}

QJsonObject verdictPart(const Verdict& verdict)
{
    QJsonArray evidence;
    for (const auto& item : verdict.evidence)
        evidence.append(Fields()
                            .add(u"name"_s, item.name)
                            .add(u"value"_s, item.value)
                            .add(u"unit"_s, item.unit)
                            .add(u"ageSeconds"_s, item.ageSeconds)
                            .add(u"text"_s, item.text)
                            .object());
    QJsonArray others;
    for (const auto& other : verdict.others)
        others.append(
            QJsonObject {{u"cause"_s, identifier(other.cause)}, {u"certainty"_s, other.certainty}});
    return Fields()
        .add(u"cause"_s, identifier(verdict.cause))
        .add(u"segment"_s, identifier(segmentOf(verdict.cause)))
        .add(u"severity"_s, identifier(verdict.severity))
        .add(u"certainty"_s, QJsonValue(verdict.certainty))
        .add(u"since"_s, timeText(verdict.since))
        .add(u"sentence"_s, verdict.sentence)
        .add(u"advice"_s, verdict.advice)
        .add(u"evidence"_s, evidence)
        .add(u"others"_s, others)
        .object();
}

QJsonObject linkPart(const Evidence& evidence)
{
    Fields fields;
    if (evidence.network && evidence.network->value.physicalRoute)
        fields.add(u"interface"_s, evidence.network->value.physicalRoute->interfaceName);
    fields.add(u"radioOn"_s, evidence.radioOn);
    if (evidence.links.empty())
        return fields.object();
    const auto& link = evidence.links.back().value;
    fields.add(u"interface"_s, link.interfaceName)
        .add(u"ssid"_s, link.ssid)
        .add(u"joiningSsid"_s, link.joiningSsid)
        .add(u"bssid"_s, link.bssid)
        .add(u"signalDbm"_s, link.signalDbm)
        .add(u"noiseDbm"_s, link.noiseDbm)
        .add(u"transmitRateMbps"_s, link.transmitRateMbps)
        .add(u"receiveRateMbps"_s, link.receiveRateMbps)
        .add(u"powerSave"_s, link.powerSave);
    if (link.channel)
        fields.add(u"channel"_s, QJsonValue(link.channel->number));
    return fields.object();
}

QJsonObject dnsPart(const Evidence& evidence)
{
    Fields fields;
    const auto lookups = verdict::trackOf(evidence.lookups);
    fields.add(u"lookupMs"_s, lookups.medianMs);
    if (lookups.asked > 0)
        fields.add(u"failedLookups"_s, QJsonValue(lookups.unanswered));
    QJsonArray servers;
    for (const auto& server : evidence.nameServers) {
        Fields one;
        one.add(u"address"_s, server.address);
        if (!server.answers.empty()) {
            const auto& last = server.answers.back().value;
            one.add(u"answers"_s, last.kind == platform::NameAnswer::Kind::Addresses)
                .add(u"latencyMs"_s, rounded(last.milliseconds));
        }
        servers.append(one.object());
    }
    return fields.add(u"servers"_s, servers).object();
}

QJsonObject portalPart(const Evidence& evidence)
{
    constexpr std::array kAnswers = {"expected"_L1, "redirect"_L1, "other-page"_L1, "refused"_L1,
        "not-trusted"_L1, "not-connected"_L1, "not-resolved"_L1, "silent"_L1};
    Fields fields;
    if (evidence.web)
        fields.add(u"https"_s, QString(kAnswers.at(size_t(evidence.web->value))));
    if (evidence.plainWeb)
        fields.add(u"http"_s, QString(kAnswers.at(size_t(evidence.plainWeb->value))));
    return fields.add(u"host"_s, evidence.portalHost)
        .add(u"proxy"_s, QJsonValue(evidence.usesProxy))
        .object();
}

QJsonArray eventsPart(const Evidence& evidence, std::chrono::system_clock::time_point now)
{
    constexpr std::array kKinds = {"connected"_L1, "disconnected"_L1, "roamed"_L1,
        "sign-in-failed"_L1, "scan-started"_L1, "scan-ended"_L1};
    QJsonArray events;
    for (const auto& event : evidence.radioEvents) {
        const auto at = now
            - std::chrono::duration_cast<std::chrono::system_clock::duration>(
                evidence.now - event.at);
        events.append(Fields()
                          .add(u"kind"_s, QString(kKinds.at(size_t(event.kind))))
                          .add(u"at"_s, timeText(at))
                          .add(u"code"_s, event.code)
                          .add(u"bssid"_s, event.bssid)
                          .object());
    }
    return events;
}

} // namespace

QString timeText(std::chrono::system_clock::time_point time)
{
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count(), Qt::UTC).toString(Qt::ISODateWithMs);
}

double rounded(double value)
{
    return double(qRound64(value * 10)) / 10;
}

QJsonObject verdictObject(
    const Verdict& verdict, const Evidence& evidence, std::chrono::system_clock::time_point now)
{
    Fields router;
    router.add(u"address"_s, evidence.routerAddress);
    addTrack(router, evidence.router.empty() ? evidence.firstHop : evidence.router);
    Fields line;
    addTrack(line, evidence.secondHop);
    Fields internet;
    addTrack(internet, evidence.internet);
    if (!evidence.internet6.empty())
        internet.add(u"ipv6Answers"_s, verdict::trackOf(evidence.internet6).isAlive());
    if (evidence.fullSizePassed)
        internet.add(u"fullSizePackets"_s, QJsonValue(evidence.fullSizePassed->value));
    Fields whole;
    whole.add(u"schema"_s, u"netvane.report/1"_s)
        .add(u"generated"_s, timeText(now))
        .add(u"version"_s, QStringLiteral(NETVANE_VERSION))
        .add(u"verdict"_s, verdictPart(verdict))
        .add(u"link"_s, linkPart(evidence))
        .add(u"router"_s, router.object())
        .add(u"line"_s, line.object())
        .add(u"internet"_s, internet.object())
        .add(u"dns"_s, dnsPart(evidence))
        .add(u"portal"_s, portalPart(evidence));
    if (evidence.network) {
        const auto& route = evidence.network->value.route4;
        const bool isThroughVpn = route && route->isThroughTunnel;
        Fields vpn;
        vpn.add(u"active"_s, QJsonValue(isThroughVpn));
        if (isThroughVpn)
            vpn.add(u"interface"_s, route->interfaceName);
        whole.add(u"vpn"_s, vpn.object());
    }
    return whole.add(u"events"_s, eventsPart(evidence, now)).object();
}

QString verdictText(const Verdict& verdict)
{
    QString text = verdict.sentence + u'\n';
    if (!verdict.advice.isEmpty())
        text += u'\n' + verdict.advice + u'\n';
    if (!verdict.evidence.empty())
        text += u'\n';
    for (const auto& item : verdict.evidence)
        text += u"- %1 (%2 s ago)\n"_s.arg(item.text).arg(qRound(item.ageSeconds));
    return text;
}

QString prometheusText(const Verdict& verdict, const Evidence& evidence)
{
    QString text;
    const auto metric = [&text](const QString& name, const QString& help, const QString& labels,
                            const std::optional<double>& value) {
        if (value)
            text += u"# HELP netvane_%1 %2\n# TYPE netvane_%1 gauge\nnetvane_%1%3 %4\n"_s.arg(
                name, help, labels, QString::number(*value, 'g', 10));
    };
    metric(u"verdict_severity"_s,
        u"How bad it is: 0 fine, 1 notice, 2 poor, 3 broken; the labels say what is to blame."_s,
        u"{cause=\"%1\",segment=\"%2\"}"_s.arg(
            identifier(verdict.cause), identifier(segmentOf(verdict.cause))),
        double(int(verdict.severity)));
    metric(u"verdict_certainty_ratio"_s, u"How certain the verdict is, 0 to 1."_s, {},
        verdict.certainty);
    const auto place = [&](const QString& name, const QString& words, const Outcomes& outcomes) {
        const auto track = verdict::trackOf(outcomes);
        if (track.asked == 0)
            return;
        if (track.medianMs)
            metric(name + u"_latency_seconds"_s, u"Time to %1, the median of some."_s.arg(words),
                {}, *track.medianMs / 1000);
        if (const auto loss = verdict::lossSince(outcomes, {}); loss.packets > 0)
            metric(name + u"_loss_ratio"_s, u"Packets lost to %1, 0 to 1."_s.arg(words), {},
                loss.percent() / 100);
    };
    place(u"router"_s, u"the router"_s, evidence.router);
    place(u"line"_s, u"the first router of the provider"_s, evidence.secondHop);
    place(u"internet"_s, u"the internet"_s, evidence.internet);
    place(u"dns"_s, u"the system's resolver"_s, evidence.lookups);
    if (!evidence.links.empty() && evidence.links.back().value.signalDbm)
        metric(u"signal_dbm"_s, u"Signal of the Wi-Fi link."_s, {},
            double(*evidence.links.back().value.signalDbm));
    return text;
}

QList<std::pair<QString, QString>> secretsOf(const Evidence& evidence)
{
    QList<std::pair<QString, QString>> secrets;
    const auto add = [&secrets](const QString& kind, const QString& secret) {
        const bool isKnown = std::ranges::any_of(
            secrets, [&](const auto& known) { return known.first == secret; });
        if (!secret.isEmpty() && !isKnown)
            secrets.append({secret, u"[%1 %2]"_s.arg(kind).arg(secrets.size() + 1)});
    };
    for (const auto& reading : evidence.links) {
        add(u"network"_s, reading.value.ssid.value_or(QString()));
        add(u"network"_s, reading.value.joiningSsid.value_or(QString()));
        add(u"station"_s, reading.value.bssid.value_or(QString()));
    }
    for (const auto& event : evidence.radioEvents)
        add(u"station"_s, event.bssid.value_or(QString()));
    add(u"host"_s, evidence.portalHost);
    add(u"address"_s, evidence.routerAddress);
    for (const auto& server : evidence.nameServers)
        add(u"address"_s, server.address);
    for (const auto& address : evidence.lookupAddresses)
        add(u"address"_s, address);
    // A name may be part of another one.
    std::ranges::stable_sort(
        secrets, std::ranges::greater {}, [](const auto& secret) { return secret.first.size(); });
    return secrets;
}

QString redacted(QString text, const Evidence& evidence)
{
    for (const auto& [secret, placeholder] : secretsOf(evidence))
        text.replace(secret, placeholder);
    return text;
}

int exitStatus(verdict::Cause cause)
{
    using verdict::Segment;
    if (cause == verdict::Cause::Unsure)
        return 20;
    const auto segment = segmentOf(cause);
    return segment == Segment::None ? 0 : 10 + int(segment) - int(Segment::System);
}

} // namespace netvane::report
