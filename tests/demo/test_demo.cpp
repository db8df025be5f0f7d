#include "demo/script.h"
#include "demo/staged_program.h"
#include "demo/window_mark.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "support/test_main.h"
#include "ui/state/detailed_window_state.h"
#include "ui/state/popover_state.h"
#include "windows/quick_window.h"

#include <QDir>
#include <QQuickItem>
#include <QTest>

#include <sys/socket.h>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Longer than any interval at which something is looked at.
constexpr std::chrono::milliseconds kUntilSeen = 35s;

void collectTexts(const QQuickItem& item, QStringList& texts)
{
    if (!item.isVisible())
        return;
    if (item.inherits("QQuickText"))
        texts.append(item.property("text").toString());
    for (const auto* child : item.childItems())
        collectTexts(*child, texts);
}

QStringList textsOf(QWindow& window)
{
    QStringList texts;
    collectTexts(windows::rootOf(window), texts);
    return texts;
}

QList<int> networkSockets()
{
    QList<int> found;
    for (const QString& name : QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries)) {
        sockaddr_storage address {};
        socklen_t size = sizeof(address);
        const int descriptor = name.toInt();
        if (::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0
            && address.ss_family != AF_UNIX)
            found.append(descriptor);
    }
    return found;
}

demo::StageOptions held(const QString& scene, std::vector<demo::Scene> scenes = demo::scenes())
{
    return {.scenes = std::move(scenes), .held = scene, .hasStatusArea = true};
}

QWindow& opened(demo::StagedProgram& program)
{
    program.delegate().popover()->show({});
    program.pass(kUntilSeen);
    return *program.delegate().popover()->window();
}

QWindow& openedWindow(demo::StagedProgram& program)
{
    program.delegate().mainMenu()->actions().constFirst()->trigger();
    program.pass(kUntilSeen);
    return program.delegate().windowController()->window();
}

/// Keeps what the program and Qt say.
QStringList g_warnings;

void keepWarning(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (text.contains(u"qml"_s))
        g_warnings.append(text);
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
        struct Row {
            QString scene;
            QStringList present;
            QStringList absent;
        };
        const QString portal = u"Captive Portal Detected"_s;
        const Row rows[] = {{u"home"_s, {u"Harbour Lane"_s, u"5 GHz"_s, u"No VPN"_s, u"4.4"_s},
                                {portal, u"Not Connected"_s, u"Recommendations"_s}},
            {u"upstairs"_s, {u"Harbour Lane"_s, u"2.4 GHz"_s}, {u"5 GHz"_s, portal}},
            {u"weak"_s, {u"Harbour Lane"_s, u"Recommendations"_s}, {portal, u"0%"_s}},
            {u"cafe"_s, {u"Café Meridian Guest"_s, portal, u"High loss"_s}, {u"Harbour Lane"_s}},
            {u"office"_s, {u"6 GHz (WiFi 6E)"_s, u"VPN active"_s}, {portal}},
            {u"off"_s, {u"Not Connected"_s, u"Wi-Fi is turned off"_s}, {u"Wi‑Fi Metrics"_s}},
            {u"permission"_s, {u"Location Permission Required"_s}, {u"Harbour Lane"_s}}};
        demo::StagedProgram program(*qApp, held(u"first-start"_s));
        auto& popover = opened(program);
        QVERIFY(textsOf(popover).contains(u"Welcome to Netvane"_s));
        for (int page = 0; page < 3; ++page)
            stateOf(popover).onboarding()->goOn();
        for (const auto& [scene, present, absent] : rows) {
            QVERIFY(program.stage().hold(scene));
            program.pass(kUntilSeen);
            const QStringList texts = textsOf(popover);
            const QString all = scene + u": "_s + texts.join(u'|');
            for (const auto& text : present)
                QVERIFY2(texts.contains(text), qPrintable(text + u" is not in "_s + all));
            for (const auto& text : absent)
                QVERIFY2(!texts.contains(text), qPrintable(text + u" is in "_s + all));
        }
    }

    /// Without being asked for, in the order of the script, and over again.
    void scenesFollowEachOther()
    {
        demo::StagedProgram program(*qApp, {.scenes = demo::scenes(), .hasStatusArea = true});
        QStringList seen;
        connect(&program.stage(), &demo::Stage::sceneChanged, this,
            [&] { seen.append(program.stage().scene().name); });
        program.pass(265s);
        QCOMPARE(seen,
            (QStringList {u"leaving"_s, u"upstairs"_s, u"weak"_s, u"cafe"_s, u"office"_s, u"off"_s,
                u"home"_s}));
    }

    /// What the user starts comes to its end, and nothing of all that reaches the network.
    void diagnosticsWithoutNetwork()
    {
        demo::StagedProgram program(*qApp, held(u"weak"_s));
        const demo::WindowMark mark(*qApp, program.stage());
        // Only the popover's test knows of the router, and so of the lag.
        auto& speedTest = *stateOf(opened(program)).speedTest();
        auto& window = openedWindow(program);
        QVERIFY2(window.title().contains(u"Demonstration"_s), qPrintable(window.title()));
        auto& dashboard = dashboardOf(window);
        dashboard.channelAnalysis()->scan();
        speedTest.runTest();
        dashboard.traceroute()->run();
        program.pass(3s);
        QCOMPARE(networkSockets(), QList<int>());
        QVERIFY(dashboard.speedTest()->isRunning());
        program.pass(57s);
        QCOMPARE(dashboard.channelAnalysis()->bars().size(), 12);
        QCOMPARE(dashboard.speedTest()->downloadSpeed(), QVariant(u"4.7 Mbps"_s));
        QCOMPARE(dashboard.speedTest()->uploadSpeed(), QVariant(u"1.9 Mbps"_s));
        QVERIFY(speedTest.lagMessage().isValid());
        const auto hops = dashboard.traceroute()->hops();
        QCOMPARE(hops.size(), 7);
        QVERIFY(!hops[2].isAnswered);
        QCOMPARE(hops[6].name, u"1.1.1.1"_s);
        QVERIFY(!dashboard.traceroute()->isRunning());
    }

    /// Names and addresses that nobody chose with a narrow window in mind.
    void hostileScene_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("emoji") << u"👩‍👩‍👧‍👦"_s.repeated(32);
        QTest::newRow("markup") << u"<img src='http://192.0.2.1/x'><b>"_s.repeated(12);
    }
    void hostileScene()
    {
        QFETCH(QString, name);
        auto scene = demo::scenes().front();
        scene.link.ssid = name;
        scene.dnsServers = {u"a-very-long-label."_s.repeated(17)};
        scene.portal = QUrl(u"https://"_s + u"portal."_s.repeated(30) + u"example/"_s);
        g_warnings.clear();
        const auto before = qInstallMessageHandler(keepWarning);
        demo::StagedProgram program(*qApp, held(u"home"_s, {scene}));
        auto& window = openedWindow(program);
        auto& dashboard = dashboardOf(window);
        dashboard.traceroute()->setTargetInput(u"hop."_s.repeated(75));
        dashboard.traceroute()->run();
        program.pass(60s);
        qInstallMessageHandler(before);
        QVERIFY(textsOf(window).contains(name));
        QCOMPARE(dashboard.traceroute()->hops().size(), 7);
        QCOMPARE(g_warnings, QStringList());
        verifyInside(windows::rootOf(window), window.width());
    }

private:
    static ui::PopoverState& stateOf(QWindow& popover)
    {
        return *windows::rootOf(popover).property("viewState").value<ui::PopoverState*>();
    }
    static ui::DashboardState& dashboardOf(QWindow& window)
    {
        const auto state = windows::rootOf(window).property("viewState");
        return *state.value<ui::DetailedWindowState*>();
    }
    /// No text begins or ends beside the window.
    static void verifyInside(const QQuickItem& item, int width)
    {
        if (!item.isVisible())
            return;
        const auto frame = item.mapRectToScene(item.boundingRect());
        if (item.inherits("QQuickText"))
            QVERIFY2(frame.left() >= 0 && frame.right() <= width,
                qPrintable(item.property("text").toString().left(40)));
        for (const auto* child : item.childItems())
            verifyInside(*child, width);
    }
};

NETVANE_TEST(TestDemo)

#include "test_demo.moc"
