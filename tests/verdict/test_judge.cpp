// What the judge says of networks as they are, healthy and not.
#include "support/test_main.h"
#include "verdict/evidence_made.h"
#include "verdict/judge.h"
#include "verdict/track.h"
#include "verdict/verdict_keeper.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using namespace netvane::verdict;

Q_DECLARE_METATYPE(netvane::verdict::Evidence)

class TestJudge : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blames_data();
    void blames();
    void keepsCalm();
    void tellsLateFromLost();

private:
    static void addHealthy();
    static void addPath();
    static void addNames();
    static void addRadio();
    static void add(const char* name, Cause cause, Evidence evidence, const Change& change = {})
    {
        if (change)
            change(evidence);
        QTest::newRow(name) << int(cause) << evidence;
    }
};

void TestJudge::addHealthy()
{
    add("cable", Cause::Healthy, cable());
    add("Wi-Fi", Cause::Healthy, wifi());
    add("weak, but it works", Cause::Healthy, wifi(), [](auto& e) {
        e.links = {{link(-84, 100, 0), kNow - 9s}, {link(-85, 200, 0), kNow}};
    });
    add("lost on the air, made good", Cause::Healthy, wifi(), [](auto& e) {
        e.links = {{link(-60, 100, 0), kNow - 9s}, {link(-60, 200, 20), kNow}};
    });
    add("nothing known yet", Cause::Unsure, Evidence {.now = kNow});
    add("a silent router", Cause::Healthy, cable(), [](auto& e) {
        e.router = outcomes(0, "xxxxxxxxxxxx");
        e.firstHop = outcomes(0, "xxxxxxxxxxxx");
    });
    add("a router that answers seldom", Cause::Healthy, cable(), [](auto& e) {
        e.firstHop = outcomes(90, ".x.xx..x.xx.");
        e.secondHop = outcomes(90, "x.x.xx.x..x.");
    });
    add("satellite", Cause::Healthy, cable(), [](auto& e) {
        e.internet = outcomes(620);
        e.secondHop = outcomes(600);
        e.lookups = outcomes(700);
        e.usual = {};
    });
    add("two lost by chance", Cause::Healthy, cable(),
        [](auto& e) { e.internet = outcomes(15, "...x.....x.."); });
    add("VPN", Cause::Healthy, cable(), throughVpn);
    add("proxy only", Cause::Healthy, cable(), [](auto& e) {
        e.internet = e.secondHop = outcomes(0, "xxxxxxxxxxxx");
        e.usesProxy = true;
        e.web = {{WebAnswer::Expected, kNow - 20s}};
    });
    add("IPv6 only", Cause::Healthy, cable(), [](auto& e) {
        e.network->value.route6 = std::exchange(e.network->value.route4, std::nullopt);
        e.internet6 = std::exchange(e.internet, outcomes(0, "xxxxxxxxxxxx"));
    });
}

void TestJudge::addPath()
{
    add("router gone", Cause::RouterDead, cable(), [](auto& e) {
        noInternet(e);
        e.router = e.firstHop = dead(2);
        e.network->value.router = platform::NeighbourState::Failed;
    });
    add("line cut", Cause::LineDown, cable(), noInternet);
    add("provider's outage", Cause::LineDown, cable(), [](auto& e) { e.internet = dead(15); });
    add("line cut behind a silent router", Cause::LineDown, cable(), [](auto& e) {
        noInternet(e);
        e.router = e.firstHop = outcomes(0, "xxxxxxxxxxxx");
    });
    add("line loses", Cause::LineLossy, cable(), [](auto& e) {
        e.internet = outcomes(15, ".x..x...x.x.");
        e.secondHop = outcomes(9, "x...x..x....");
    });
    add("router loses", Cause::RouterLossy, cable(), lossyNear);
    add("line slow", Cause::LineSlow, cable(), [](auto& e) { e.internet = outcomes(400); });
    add("line filled", Cause::LagUnderLoad, cable(), [](auto& e) {
        e.internet = outcomes(400);
        e.load = {{{.receivedMbps = 8}, kNow - 1s}};
    });
    add("router slow", Cause::RouterSlow, cable(), [](auto& e) {
        e.router = e.firstHop = outcomes(300);
        e.internet = outcomes(320);
    });
    add("one host", Cause::TargetUnreachable, cable(), [](auto& e) {
        e.internet = dead(15);
        e.otherHosts = outcomes(18, "..");
    });
    add("no adapter", Cause::NoAdapter, cable(), [](auto& e) {
        withoutRoute(e);
        e.network->value.interfaces.clear();
    });
    add("no address", Cause::NoAddress, cable(), [](auto& e) {
        withoutRoute(e);
        e.network->value.interfaces.front().hasIPv4 = false;
    });
    add("no route", Cause::NoRoute, cable(), withoutRoute);
    add("VPN dead", Cause::VpnDown, cable(), [](auto& e) {
        throughVpn(e);
        e.internet = dead(15);
    });
    add("line cut under a VPN", Cause::LineDown, cable(), [](auto& e) {
        throughVpn(e);
        noInternet(e);
    });
}

void TestJudge::addNames()
{
    const auto failing = [](auto& e) { e.lookups = dead(20); };
    add("DNS dead", Cause::DnsDead, cable(), [=](auto& e) {
        failing(e);
        e.nameServers = {server(Kind::Nothing)};
    });
    add("the first of two dead", Cause::DnsDead, cable(), [](auto& e) {
        e.lookups = outcomes(5020);
        e.nameServers = {server(Kind::Nothing), server(Kind::Addresses)};
        e.nameServers.back().address = u"9.9.9.9"_s;
    });
    add("DNS with the line", Cause::LineDown, cable(), [=](auto& e) {
        failing(e);
        noInternet(e);
        e.nameServers = {server(Kind::Nothing)};
    });
    add("DNS slow", Cause::DnsSlow, cable(), [](auto& e) { e.lookups = outcomes(900); });
    add("DNS denies", Cause::DnsWrong, cable(), [](auto& e) {
        e.lookupNameUnknown = true;
        e.lookupAddresses.clear();
        e.nameServers = {server(Kind::NoSuchName)};
        e.web = {{WebAnswer::NotResolved, kNow}};
    });
    add("DNS lies", Cause::DnsWrong, cable(), [](auto& e) {
        e.lookupAddresses = {u"127.0.0.1"_s};
        e.web = {{WebAnswer::NotConnected, kNow}};
    });
    for (const auto* address : {"0.0.0.0", "10.0.0.7", "fd00::7"})
        add("a filter, or names of the house", Cause::Healthy, cable(),
            [=](auto& e) { e.lookupAddresses = {QString::fromLatin1(address)}; });
    for (const auto web : {WebAnswer::Silent, WebAnswer::NotTrusted})
        add("all accepted, nothing answered", Cause::Portal, cable(), [=](auto& e) {
            e.web = {{web, kNow - 9s}};
            e.plainWeb = {{WebAnswer::Silent, kNow - 9s}};
            e.fullSizePassed = {{true, kNow - 3s}};
        });
    add("portal", Cause::Portal, cable(), [](auto& e) {
        e.web = {{WebAnswer::NotTrusted, kNow - 3s}};
        e.plainWeb = {{WebAnswer::Redirect, kNow}};
        e.portalHost = u"login.hotel-with-a-very-long-name.example"_s;
    });
    add("large packets", Cause::Mtu, cable(), [](auto& e) { e.fullSizePassed = {{false, kNow}}; });
    add("IPv6 broken", Cause::IPv6Broken, cable(), [](auto& e) {
        e.network->value.route6 = e.network->value.route4;
        e.internet6 = outcomes(0, "xxxx");
    });
}

void TestJudge::addRadio()
{
    add("radio off", Cause::RadioOff, wifi(), [](auto& e) {
        withoutLink(e);
        e.radioOn = false;
    });
    add("not connected", Cause::NotConnected, wifi(), withoutLink);
    add("signing in", Cause::SigningIn, wifi(), [](auto& e) {
        withoutLink(e);
        e.links.back().value.joiningSsid = u"<b>hotel</b> with thirty-two bytes"_s;
    });
    using enum RadioEvent::Kind;
    const std::tuple<const char*, Cause, RadioEvent::Kind, std::optional<int>> kEnds[] = {
        {"refused", Cause::SignInRefused, SignInFailed, 1},
        {"wrong passphrase", Cause::SignInRefused, Disconnected, 15},
        {"key not renewed", Cause::AccessPointLost, Disconnected, 16},
        {"gone, and does not answer", Cause::AccessPointLost, SignInFailed, {}},
    };
    for (const auto& [name, cause, kind, code] : kEnds)
        add(name, cause, wifi(), [&](auto& e) {
            withoutLink(e);
            addEvent(e, Disconnected, 9s, 4);
            addEvent(e, kind, 5s, code, kind == Disconnected);
        });
    add("lost a moment ago", Cause::AccessPointLost, wifi(), [](auto& e) {
        noInternet(e);
        e.router = e.firstHop = dead(2);
        addEvent(e, Disconnected, 0s, 7, true);
    });
    add("left a moment ago", Cause::Unsure, wifi(), [](auto& e) {
        e.lookupPendingSince = kNow - 4s;
        addEvent(e, Disconnected, 0s, 3);
    });
    add("sign-in that is tried again", Cause::SigningIn, wifi(), [](auto& e) {
        withoutLink(e);
        e.links.insert(e.links.begin(), {{.joiningSsid = u"home"_s}, kNow - 9s});
        addEvent(e, Disconnected, 8s, 3);
    });
    add("weak", Cause::WeakSignal, wifi(), [](auto& e) {
        lossyNear(e);
        e.links = {{link(-86, 100, 0), kNow - 9s}, {link(-86, 200, 20), kNow}};
    });
    add("lost on the air", Cause::AirLossy, wifi(), [](auto& e) {
        lossyNear(e);
        e.links = {{link(-50, 100, 0), kNow - 9s}, {link(-50, 200, 60), kNow}};
    });
    add("busy", Cause::AirBusy, wifi(), [](auto& e) {
        e.router = e.firstHop = outcomes(150);
        e.internet = outcomes(170);
        e.links.front().value.counters = {.channelActiveMs = 0, .channelBusyMs = 0};
        e.links.back().value.counters = {.channelActiveMs = 9000, .channelBusyMs = 8500};
    });
    add("power saving", Cause::PowerSave, wifi(), [](auto& e) {
        e.router = e.firstHop = outcomes(120);
        e.router[2].milliseconds = 3;
        e.router[kRounds - 2].milliseconds = 30;
        e.internet = outcomes(130);
        e.links.back().value.powerSave = true;
    });
    add("slow while the radio saves power", Cause::RouterSlow, wifi(), [](auto& e) {
        e.router = e.firstHop = outcomes(320);
        for (int round = 0; round < kRounds - 3; ++round)
            e.router[round].milliseconds = e.firstHop[round].milliseconds = 3;
        e.internet = outcomes(330);
        e.links.back().value.powerSave = true;
    });
    add("comes and goes", Cause::AccessPointLost, wifi(), [](auto& e) {
        addEvent(e, Disconnected, 15s, 7, true);
        addEvent(e, Disconnected, 8s, 7, true);
    });
    add("came and went, and a program scanned", Cause::Healthy, wifi(), [](auto& e) {
        for (const auto age : {40s, 25s})
            for (const auto kind : {Disconnected, Roamed, ScanStarted, ScanEnded})
                addEvent(e, kind, age, 7, true);
        for (auto& outcome : e.router)
            outcome.milliseconds = outcome.at < kNow - 24s ? 300 : 2;
    });
    add("scanned", Cause::Scanning, wifi(), [](auto& e) {
        for (const int round : {2, 7}) {
            addEvent(e, ScanStarted, 3s * (kRounds - round), 0);
            e.router[round].milliseconds = e.router[round + 2].milliseconds = 300;
            addEvent(e, ScanEnded, 3s * (kRounds - round - 3), 0);
        }
    });
    add("roams", Cause::Roaming, wifi(), [](auto& e) {
        addEvent(e, Roamed, 30s, 0);
        addEvent(e, Roamed, 10s, 0);
    });
}

void TestJudge::blames_data()
{
    QTest::addColumn<int>("cause");
    QTest::addColumn<Evidence>("evidence");
    addHealthy();
    addPath();
    addNames();
    addRadio();
}

/// A sentence about a fault names values that stand among the evidence; it fits, and so does the
/// chain.
void TestJudge::blames()
{
    QFETCH(int, cause);
    QFETCH(Evidence, evidence);
    const auto verdict = judge(evidence);
    QCOMPARE(identifier(verdict.cause), identifier(Cause(cause)));
    QVERIFY2(verdict.sentence.size() <= kLongestSentence, qPrintable(verdict.sentence));
    QVERIFY2(verdict.sentence.endsWith(u'.') || verdict.sentence.endsWith(u'…'),
        qPrintable(verdict.sentence)); // it was not cut
    QCOMPARE(verdict.chain.size(), size_t(5));
    for (const auto& other : verdict.others)
        QVERIFY(other.cause != verdict.cause && other.certainty <= verdict.certainty);
    if (verdict.cause == Cause::Healthy || verdict.cause == Cause::Unsure)
        return;
    QVERIFY(!verdict.advice.isEmpty() && !verdict.evidence.empty());
    int named = 0;
    auto numbers = QRegularExpression(u"-?\\d+(\\.\\d+)?"_s).globalMatch(verdict.sentence);
    while (numbers.hasNext()) {
        const double number = numbers.next().captured().toDouble();
        named += std::ranges::any_of(verdict.evidence,
            [&](const auto& item) { return std::abs(item.value - number) <= 0.5; });
    }
    QVERIFY2(named >= 2, qPrintable(verdict.sentence));
}

void TestJudge::keepsCalm()
{
    VerdictKeeper keeper;
    TimePoint now = kNow;
    Evidence cut = cable();
    noInternet(cut);
    const auto show = [&](const Evidence& evidence, std::chrono::seconds later) {
        now += later;
        return identifier(keeper.take(judge(evidence), now, {}).cause);
    };
    QCOMPARE(show(cable(), 0s), u"healthy"_s);
    QCOMPARE(show(cut, 3s), u"line-down"_s);
    QCOMPARE(show(cable(), 3s), u"line-down"_s); // one good moment
    QCOMPARE(show(cut, 3s), u"line-down"_s);
    QCOMPARE(show(cable(), 3s), u"line-down"_s);
    QCOMPARE(show(cable(), 6s), u"healthy"_s);
    Evidence away = cable();
    withoutRoute(away);
    QCOMPARE(show(away, 1s), u"healthy"_s); // between two networks
    QCOMPARE(show(away, 3s), u"no-route"_s);
}

void TestJudge::tellsLateFromLost()
{
    struct Row {
        double usual, milliseconds;
        int sentAgain, lost;
    };
    for (const auto& [usual, milliseconds, sentAgain, lost] : std::initializer_list<Row> {
             {20, 1021, 1, 1}, // lost
             {20, 3020, 2, 2}, // with waits that double
             {20, 2030, 2, 2}, // with waits of a second each
             {620, 1625, 1, 1}, // lost on a satellite's line
             {620, 1080, 1, 0}, // late on it
             {620, 2640, 2, 2}, {900, 1100, 1, 0}, // a queue that fills
             {20, 1300, 1, 0}, {1300, 1302, 1, 0}, // always so late
         })
        QCOMPARE(lostInHandshake(outcomes(usual), milliseconds, sentAgain), lost);
    QCOMPARE(lostInHandshake({}, 1300, 1), 0);
}

NETVANE_TEST(TestJudge)
#include "test_judge.moc"
