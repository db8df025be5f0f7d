#include "demo/staged_program.h"
#include "demo/window_mark.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "verdict/verdict_service.h"

#include <QDir>
#include <QTest>

#include <sys/socket.h>

#include <algorithm>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Longer than every refresh interval.
constexpr std::chrono::milliseconds kUntilSeen = 35s;

QStringList textsOf(QWindow& window)
{
    return test::visibleTexts(windows::rootOf(window));
}

auto networkSockets()
{
    const auto names = QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries);
    return std::ranges::count_if(names, [](const QString& name) {
        sockaddr_storage address {};
        socklen_t size = sizeof(address);
        return ::getsockname(name.toInt(), reinterpret_cast<sockaddr*>(&address), &size) == 0
            && address.ss_family != AF_UNIX;
    });
}

demo::StageOptions held(const QString& scene)
{
    return {.held = scene, .hasStatusArea = true};
}

} // namespace

class TestDemo : public QObject {
    Q_OBJECT

public:
    static bool prepare()
    {
        ui::ViewEngine::prepareRendering();
        QApplication::setQuitOnLastWindowClosed(false);
        return true;
    }

private Q_SLOTS:
    /// Each scene in turn, in one run of the program, as it is seen in the popover.
    void scenesAreSeen()
    {
        const QString portal = u"Captive Portal Detected"_s;
        const std::tuple<QString, QString, QStringList, QStringList> rows[]
            = {{u"home"_s, u"healthy"_s, {u"Harbour Lane"_s, u"5 GHz"_s, u"4.4"_s}, {portal}},
                {u"weak"_s, u"weak-signal"_s, {}, {portal}},
                {u"cafe"_s, u"portal"_s, {u"Café Meridian Guest"_s, portal}, {u"Harbour Lane"_s}},
                {u"router-dead"_s, u"router-dead"_s, {}, {}},
                {u"line-down"_s, u"line-down"_s, {}, {}}, {u"dns-dead"_s, u"dns-dead"_s, {}, {}},
                {u"off"_s, u"healthy"_s, {u"Wi-Fi is turned off"_s}, {u"Wi‑Fi Metrics"_s}},
                {u"permission"_s, u"healthy"_s, {u"Location Permission Required"_s},
                    {u"Harbour Lane"_s}}};
        demo::StagedProgram program(*qApp, held(u"first-start"_s));
        auto& popover = program.openPopover(kUntilSeen);
        QVERIFY(textsOf(popover).contains(u"Welcome to Netvane"_s));
        for (int page = 0; page < 3; ++page)
            demo::stateOf<ui::PopoverState>(popover).onboarding()->goOn();
        for (const auto& [scene, cause, present, absent] : rows) {
            QVERIFY(program.stage().hold(scene));
            program.pass(kUntilSeen);
            const QStringList texts = textsOf(popover);
            const auto isSeen = [&](const QString& text) { return texts.contains(text); };
            QVERIFY2(std::ranges::all_of(present, isSeen) && std::ranges::none_of(absent, isSeen),
                qPrintable(scene + u": "_s + texts.join(u'|')));
            const auto& verdict = program.delegate().services().verdictService->verdict();
            QCOMPARE(identifier(verdict.cause), cause);
        }
    }

    /// The diagnostics end, and none of them uses the network.
    void diagnosticsWithoutNetwork()
    {
        demo::StagedProgram program(*qApp, held(u"weak"_s));
        const demo::WindowMark mark(*qApp, program.stage());
        // Only the popover's speed test has the router's probe, and so the lag.
        auto& speedTest
            = *demo::stateOf<ui::PopoverState>(program.openPopover(kUntilSeen)).speedTest();
        auto& window = program.openDetailedWindow(kUntilSeen);
        QVERIFY2(window.title().contains(u"Demonstration"_s), qPrintable(window.title()));
        auto& dashboard = demo::stateOf<ui::DetailedWindowState>(window);
        dashboard.channelAnalysis()->scan();
        speedTest.runTest();
        dashboard.traceroute()->run();
        program.pass(3s);
        QCOMPARE(networkSockets(), 0);
        QVERIFY(dashboard.speedTest()->isRunning());
        program.pass(57s);
        QCOMPARE(dashboard.channelAnalysis()->bars().size(), 12);
        QCOMPARE(dashboard.speedTest()->downloadSpeed(), QVariant(u"4.7 Mbps"_s));
        QVERIFY(speedTest.lagMessage().isValid());
        const auto hops = dashboard.traceroute()->hops();
        QCOMPARE(hops.size(), 7);
        QVERIFY(!hops[2].isAnswered);
        QCOMPARE(hops[6].name, u"1.1.1.1"_s);
        QVERIFY(!dashboard.traceroute()->isRunning());
    }

    /// Names and addresses that are too long for a narrow window.
    void hostileScene()
    {
        const QString name
            = u"<img src='http://192.0.2.1/x'>"_s + u"👩‍👩‍👧‍👦"_s.repeated(24);
        auto options = held(u"home"_s);
        auto& scene = options.scenes.front();
        scene.link.ssid = name;
        scene.dnsServers = {u"a-very-long-label."_s.repeated(17)};
        scene.portal = QUrl(u"https://"_s + u"portal."_s.repeated(30) + u"example/"_s);
        test::CapturedLog log;
        const auto before = qInstallMessageHandler(app::logOfQt);
        demo::StagedProgram program(*qApp, options);
        auto& window = program.openDetailedWindow(kUntilSeen);
        auto& dashboard = demo::stateOf<ui::DetailedWindowState>(window);
        dashboard.traceroute()->setTargetInput(u"hop."_s.repeated(75));
        dashboard.traceroute()->run();
        program.pass(60s);
        qInstallMessageHandler(before);
        QVERIFY(textsOf(window).contains(name));
        QCOMPARE(log.take().filter(u".qml:"_s), QStringList());
    }
};

NETVANE_TEST(TestDemo)

#include "test_demo.moc"
