#include "verdict/chain.h"

#include "verdict/rules.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace netvane::verdict {
namespace {

enum Place { Air, Router, Line, Internet, Dns, kPlaces };

/// Where on the chain the cause stands; absent where it stands nowhere.
std::optional<Place> placeOf(Cause cause)
{
    switch (segmentOf(cause)) {
    case Segment::None:
        return {};
    case Segment::System:
        return cause == Cause::VpnDown ? Internet : Air;
    case Segment::Radio:
        return Air;
    case Segment::Router:
        return Router;
    case Segment::Line:
        return Line;
    case Segment::Dns:
        return Dns;
    case Segment::Portal:
    case Segment::Internet:
        return Internet;
    }
    return {};
}

QString lossFigure(const Loss& loss)
{
    return u"%1 % lost"_s.arg(qRound(loss.percent()));
}

/// One lost packet alone says nothing.
bool answersLately(const Track& track)
{
    return track.hasAnswered() && track.unanswered < 2;
}

QString timeFigure(const Track& track)
{
    return answersLately(track) && track.medianMs ? inMs(*track.medianMs) : QString();
}

QString airFigure(const Facts& facts)
{
    const auto* link = facts.link();
    return facts.isByRadio && link && link->ssid && link->signalDbm
        ? u"%1 dBm"_s.arg(*link->signalDbm)
        : QString();
}

/// By what the radio itself tells, where nothing answers through it.
bool isAirFine(const Facts& facts)
{
    constexpr double kMostFailedPercent = 3;
    return facts.isByRadio && facts.radio && facts.radio->seconds > 0
        && facts.radio->beaconsLost == 0 && facts.radio->failedPercent() < kMostFailedPercent;
}

} // namespace

QString wordOf(Cause cause)
{
    switch (cause) {
    case Cause::NoAdapter:
        return u"no adapter"_s;
    case Cause::RadioOff:
        return u"switched off"_s;
    case Cause::NoAddress:
        return u"no address"_s;
    case Cause::NoRoute:
        return u"no route"_s;
    case Cause::VpnDown:
        return u"VPN is down"_s;
    case Cause::NotConnected:
        return u"not connected"_s;
    case Cause::SigningIn:
        return u"signing in"_s;
    case Cause::SignInRefused:
        return u"refused"_s;
    case Cause::WeakSignal:
        return u"weak signal"_s;
    case Cause::AirBusy:
        return u"busy channel"_s;
    case Cause::PowerSave:
        return u"saves power"_s;
    case Cause::Scanning:
        return u"scanning"_s;
    case Cause::Roaming:
        return u"roaming"_s;
    case Cause::AccessPointLost:
        return u"connection lost"_s;
    case Cause::RouterDead:
    case Cause::LineDown:
    case Cause::DnsDead:
    case Cause::TargetUnreachable:
        return u"no answer"_s;
    case Cause::RouterSlow:
    case Cause::LineSlow:
    case Cause::LagUnderLoad:
    case Cause::DnsSlow:
        return u"slow"_s;
    case Cause::AirLossy:
    case Cause::RouterLossy:
    case Cause::LineLossy:
        return u"loses packets"_s;
    case Cause::DnsWrong:
        return u"false answers"_s;
    case Cause::Portal:
        return u"log-in needed"_s;
    case Cause::Mtu:
        return u"large packets lost"_s;
    case Cause::IPv6Broken:
        return u"no IPv6"_s;
    case Cause::Healthy:
    case Cause::Unsure:
        return {};
    }
    return {};
}

std::vector<ChainLink> chainOf(const Facts& facts, Cause cause, Severity severity)
{
    const auto lookups = trackOf(facts.evidence.lookups);
    std::vector<ChainLink> chain(kPlaces);
    const bool showsRadio
        = facts.isByRadio || (!facts.evidence.network && facts.evidence.radioOn.has_value());
    chain[Air] = {.name = showsRadio ? u"Wi-Fi"_s : u"Cable"_s, .figure = airFigure(facts)};
    chain[Router] = {.name = u"Router"_s, .figure = timeFigure(facts.near())};
    chain[Line] = {.name = u"Line"_s, .figure = timeFigure(facts.secondHop)};
    chain[Internet] = {.name = u"Internet"_s, .figure = timeFigure(facts.internet)};
    chain[Dns] = {.name = u"DNS"_s, .figure = timeFigure(lookups)};
    // What answers shows that all before it works.
    const bool isNearAlive
        = facts.isNearAlive || answersLately(facts.router) || answersLately(facts.firstHop);
    const std::array isAlive = {isNearAlive, isNearAlive, answersLately(facts.secondHop),
        facts.isReached || answersLately(facts.internet), lookups.isAlive()};
    bool isBehindAlive = false;
    for (int place = Internet; place >= Air; --place) {
        isBehindAlive = isBehindAlive || isAlive[size_t(place)];
        if (isBehindAlive)
            chain[size_t(place)].state = LinkState::Fine;
    }
    if (chain[Air].state == LinkState::Unknown && isAirFine(facts)) {
        chain[Air].state = LinkState::Fine;
        chain[Air].word = u"connected"_s;
    }
    if (lookups.isAlive())
        chain[Dns].state = LinkState::Fine;
    if (const auto place = placeOf(cause)) {
        auto& culprit = chain[*place];
        culprit.state = severity == Severity::Broken ? LinkState::Broken : LinkState::Bad;
        culprit.word = wordOf(cause);
        if (cause == Cause::LineLossy)
            culprit.figure = lossFigure(facts.farLoss);
        if (cause == Cause::RouterLossy || cause == Cause::AirLossy)
            culprit.figure = lossFigure(facts.nearLoss);
        if (cause == Cause::LineSlow || cause == Cause::LagUnderLoad)
            culprit.figure = timeFigure(facts.internet);
        const bool stopsAll = severity == Severity::Broken && cause != Cause::Mtu
            && segmentOf(cause) != Segment::Dns;
        for (size_t behind = *place + 1; stopsAll && behind < kPlaces; ++behind) {
            chain[behind].state = LinkState::NotReached;
            chain[behind].figure.clear();
        }
    }
    for (auto& link : chain) {
        if (link.word.isEmpty() && link.state == LinkState::Fine)
            link.word = u"fine"_s;
        else if (link.state == LinkState::NotReached)
            link.word = u"not reached"_s;
        else if (link.word.isEmpty())
            link.word = u"not known"_s;
    }
    return chain;
}

} // namespace netvane::verdict
