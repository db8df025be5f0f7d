// All that a network can make the judge look at: names, addresses, answers and the lack of them.
#include "base/visible_text.h"
#include "fuzz_target.h"
#include "verdict/judge.h"

#include <QUrl>

#include <cmath>

namespace netvane::fuzz {
namespace {

using namespace verdict;
using namespace std::chrono_literals;

const TimePoint kNow {1h};

/// Draws the parts of an `Evidence`.
struct Draw {
    FuzzedDataProvider& input;

    bool flag() { return input.ConsumeBool(); }
    int upTo(int most) { return input.ConsumeIntegralInRange(0, most); }
    TimePoint time() { return kNow - std::chrono::seconds(upTo(255)); }
    double ms() { return upTo(0xffff) / 10.0; }
    QString text() { return base::withVisibleControls(QString::fromUtf8(takeBytes(input, 64))); }
    template <typename Value, typename Make>
    void maybe(std::optional<Value>& value, Make make)
    {
        if (flag())
            value = make();
    }

    Outcomes outcomes()
    {
        Outcomes drawn(size_t(upTo(14)));
        for (size_t i = 0; i < drawn.size(); ++i) {
            drawn[i].at = kNow - 3s * int(drawn.size() - i);
            maybe(drawn[i].milliseconds, [&] { return ms(); });
            maybe(drawn[i].retransmissions, [&] { return upTo(5); });
        }
        return drawn;
    }

    platform::NetworkState network()
    {
        const QString names[] = {QStringLiteral("a"), QStringLiteral("b")};
        platform::NetworkState state;
        for (const auto& name : names)
            state.interfaces.push_back({name, flag(), flag(), flag(), flag(), flag(), flag()});
        for (auto* route : {&state.route4, &state.route6, &state.physicalRoute})
            maybe(*route, [&] { return platform::DefaultRoute {text(), names[upTo(1)], flag()}; });
        state.router = platform::NeighbourState(upTo(3));
        return state;
    }

    platform::LinkReading link()
    {
        platform::LinkReading drawn;
        drawn.ssid = base::ssidText(takeBytes(input, 32));
        drawn.joiningSsid = base::ssidText(takeBytes(input, 32));
        maybe(drawn.signalDbm, [&] { return -upTo(120); });
        maybe(drawn.powerSave, [&] { return flag(); });
        auto& all = drawn.counters;
        for (auto* counter : {&all.sentPackets, &all.retries, &all.failed, &all.beaconsLost,
                 &all.channelActiveMs, &all.channelBusyMs})
            maybe(*counter, [&] { return upTo(0xffff); });
        return drawn;
    }

    void radio(Evidence& evidence)
    {
        evidence.radioOn = flag();
        for (int i = upTo(3); i > 0; --i)
            evidence.links.push_back({link(), kNow - 5s * i});
        for (int i = upTo(8); i > 0; --i) {
            auto& event = evidence.radioEvents.emplace_back(
                platform::RadioEvent {.kind = platform::RadioEvent::Kind(upTo(5))});
            event.at = kNow - 3s * i;
            maybe(event.code, [&] { return upTo(0xffff); });
            event.byAccessPoint = flag();
        }
    }

    void names(Evidence& evidence)
    {
        maybe(evidence.lookupPendingSince, [&] { return time(); });
        evidence.lookupNameUnknown = flag();
        evidence.lookupAddresses = {text()};
        for (int i = upTo(3); i > 0; --i) {
            auto& server = evidence.nameServers.emplace_back(NameServer {text(), {}});
            for (int each = upTo(3); each > 0; --each)
                server.answers.push_back(
                    {{platform::NameAnswer::Kind(upTo(4)), {text()}, ms()}, kNow - 3s * each});
        }
    }

    void web(Evidence& evidence)
    {
        for (auto* web : {&evidence.web, &evidence.plainWeb})
            maybe(*web, [&] { return Reading<WebAnswer> {WebAnswer(upTo(7)), time()}; });
        evidence.portalHost = QUrl(QString::fromUtf8(takeBytes(input, 300))).host();
        evidence.usesProxy = flag();
        maybe(evidence.fullSizePassed, [&] { return Reading<bool> {flag(), time()}; });
        maybe(evidence.load, [&] { return Reading<Load> {{ms(), ms()}, time()}; });
    }
};

} // namespace

void tryInput(FuzzedDataProvider& input)
{
    Draw draw {input};
    Evidence evidence {.now = kNow};
    draw.maybe(evidence.network, [&] {
        return Reading<platform::NetworkState> {draw.network(), draw.time()};
    });
    for (auto* outcomes :
        {&evidence.router, &evidence.firstHop, &evidence.secondHop, &evidence.internet,
            &evidence.internet6, &evidence.between, &evidence.otherHosts, &evidence.lookups})
        *outcomes = draw.outcomes();
    for (auto* usual : {&evidence.usual.router, &evidence.usual.internet, &evidence.usual.lookup})
        draw.maybe(*usual, [&] { return draw.ms(); });
    draw.names(evidence);
    draw.web(evidence);
    if (draw.flag())
        draw.radio(evidence);

    const Verdict verdict = judge(evidence);
    require(!verdict.sentence.isEmpty() && verdict.sentence.size() <= kLongestSentence, "it fits");
    requireLine(verdict.sentence);
    requireLine(verdict.advice);
    require(verdict.certainty > 0 && verdict.certainty <= 1, "a certainty is a share");
    require(verdict.chain.size() == 5, "the chain is whole");
    for (const auto& item : verdict.evidence) {
        require(std::isfinite(item.value) && item.ageSeconds >= 0, "values are values");
        requireLine(item.text);
    }
    require(judge(evidence) == verdict, "it does not change its mind");
}

} // namespace netvane::fuzz
