#include "app/view_window.h"
#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "program_world.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "verdict/verdict_service.h"

#include <QPointer>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane::test;
using ui::PopoverState;

namespace {

/// The first visible item of `type` with that text; null when there is none.
QQuickItem* find(QQuickItem& item, const char* type, const QString& text)
{
    for (auto* each : visibleItems(item)) {
        if (each->inherits(type) && each->property("text") == text)
            return each;
    }
    return nullptr;
}

bool showsText(QQuickItem& root, const QString& text)
{
    return find(root, "QQuickText", text) != nullptr;
}

QQuickItem* control(QQuickItem& root, const QString& text)
{
    return find(root, "QQuickAbstractButton", text);
}

/// Presses it as the keyboard would.
bool press(QQuickItem& root, const QString& text)
{
    auto* found = control(root, text);
    if (!found || !found->isEnabled())
        return false;
    found->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(root.window(), Qt::Key_Space);
    QCoreApplication::processEvents();
    return true;
}

} // namespace

class TestProgramViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.take(); }

    void updatesWhileItIsOpen()
    {
        Program program;
        QCOMPARE(program.state().updateCount(), 1);
        program.link(kHome);
        QVERIFY(!showsText(program.root(), u"Home"_s));
        program.clock->advance(10s);
        QVERIFY(showsText(program.root(), u"Home"_s));
        const auto line = m_log.take().filter(u"PopoverView:"_s).value(1);
        QVERIFY2(line.endsWith(u"#2 took 0.00ms, changes: wifi, error"_s), qPrintable(line));

        program.click();
        QVERIFY(!program.popover().isShown());
        auto other = kHome;
        other.signalDbm = -85;
        program.link(other);
        program.clock->advance(60s);
        QCOMPARE(program.state().updateCount(), 2);
        program.click();
        QCOMPARE(program.state().updateCount(), 3);
        QVERIFY(showsText(program.root(), u"-85 dBm"_s));
    }

    void escapeLeavesTheSettingsFirst()
    {
        Program program;
        QVERIFY(press(program.root(), u"Settings"_s));
        program.key(Qt::Key_Escape);
        QCOMPARE(program.state().content(), PopoverState::Dashboard);
        QVERIFY(program.popover().isShown());
        program.key(Qt::Key_Escape);
        QVERIFY(!program.popover().isShown());

        program.clickItem();
        program.key(Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!program.popover().isShown());
        QVERIFY(program.delegate->windowController()->isWindowVisible());
        const QPointer<QQuickItem> window = &program.windowRoot(); // only brings it to the front
        program.link(kHome);
        program.clock->advance(5s);
        QVERIFY(showsText(*window, u"Home"_s));
        QVERIFY(press(*window, u"Settings"_s));
        program.key(Qt::Key_Escape);
        QVERIFY(!control(*window, u"Back"_s));
        QVERIFY(program.delegate->windowController()->isWindowVisible());
        const QPointer<QObject> state = window->property("viewState").value<QObject*>();
        program.delegate->windowController()->window().close();
        QCoreApplication::processEvents();
        QVERIFY(!program.delegate->windowController()->isWindowVisible());
        QVERIFY(!window && !state);
    }

    void verdictIsExplained()
    {
        Program program;
        auto& item = *program.delegate->statusBarManager()->statusItem();
        program.clock->advance(20s);
        program.settle();
        const auto& verdict = program.delegate->services().verdictService->verdict();
        QVERIFY(!verdict.sentence.isEmpty());
        QCOMPARE(item.toolTip(), verdict.sentence);
        program.delegate->statusBarManager()->setToolTip(u"\"<b>&amp;\""_s);
        for (const auto sign : {u'<', u'&'})
            QVERIFY(!item.toolTip().contains(sign));

        program.root().findChild<QQuickItem*>(u"verdict"_s)->forceActiveFocus(Qt::TabFocusReason);
        program.key(Qt::Key_Return);
        QVERIFY(!program.popover().isShown());
        auto& window = program.delegate->verdictWindow()->window();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(window.title(), u"What is wrong?"_s);
        const QPointer<QQuickItem> root = &windows::rootOf(window);
        QVERIFY(showsText(*root, verdict.sentence));
        program.key(Qt::Key_Escape);
        QVERIFY(!program.delegate->verdictWindow() && !root);

        program.delegate->applicationStartedAgain({platform::kTimeLineAction, {}});
        auto& timeLine = program.delegate->timeLineWindow()->window();
        QVERIFY(QTest::qWaitForWindowActive(&timeLine));
        QVERIFY(showsText(windows::rootOf(timeLine), u"When is it bad?"_s));
        program.key(Qt::Key_Escape);
        QVERIFY(!program.delegate->timeLineWindow());

        program.delegate->mainMenu()->actions().constLast()->trigger();
        QVERIFY(showsText(windows::rootOf(program.delegate->airWindow()->window()), u"Roaming"_s));
    }

    void windowTellsTheWayBackWithoutAnItem()
    {
        Program program;
        const auto* note = program.windowRoot().findChild<QQuickItem*>(u"window-note"_s);
        for (const bool hasItem : {true, false, true}) {
            program.host.setPresent(hasItem);
            QCOMPARE(note->isVisible(), !hasItem);
        }
    }

    void clickBeforeTheServicesRun()
    {
        FakedWorld world(windows::makeQuickViews);
        world.host.setPresent(true);
        world.launch();
        world.clickItem();
        world.delegate->statusBarManager()->openInWindow();
        world.settle();
        QVERIFY(!world.delegate->popover()->isShown());
        QVERIFY(!world.delegate->windowController());
    }

    void settingsCards()
    {
        Program program;
        program.link(kHome);
        auto& root = program.root();
        QVERIFY(press(root, u"Settings"_s));
        QCOMPARE(auditView(root).join(u'\n'), QString());
        QVERIFY(press(root, u"Network Changes"_s));
        QVERIFY(program.delegate->networkNotificationService()->notificationsEnabled());
        QVERIFY(control(root, u"Grant Permission"_s));
        program.notifications.tellSettings(platform::NotificationAuthorization::Authorized);
        QVERIFY(!control(root, u"Grant Permission"_s));
        for (const auto& button : {u"Save to File..."_s, u"Copy to Clipboard"_s, u"Share..."_s})
            QVERIFY(press(root, button));
        QVERIFY(!program.savePanel.fileName.isEmpty());
        QVERIFY(program.clipboard.text.contains(u"Home"_s));
        QCOMPARE(program.sharePicker.text, program.clipboard.text);
        QVERIFY(press(root, u"Copy to Clipboard"_s));
        QVERIFY(showsText(root, u"The report is on the clipboard."_s));
        program.savePanel.chosen(u"/none/report.txt"_s);
        test::settle(program.platform.queues->utility);
        const auto problem = program.state().settings()->property("reportProblem").toString();
        QVERIFY(problem.startsWith(u"The report could not be saved: "_s));
        QVERIFY(showsText(root, problem));

        program.state().goBack();
        program.location.change(platform::AuthorizationStatus::Denied);
        QCoreApplication::processEvents();
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(press(root, u"Open Settings"_s));
        QCOMPARE(program.opener.opened, QList<QUrl>({platform::kPrivacySettingsUrl}));
    }

    void introductionFirstAndAfterAReset()
    {
        Program program(false);
        QCOMPARE(program.state().content(), PopoverState::Onboarding);
        QCOMPARE(program.state().updateCount(), 0);
        program.delegate->onboardingService()->setIsCompleted(true);
        QCOMPARE(program.state().content(), PopoverState::Dashboard);
        QTRY_COMPARE(program.state().updateCount(), 1);
        auto& service = *program.delegate->networkNotificationService();
        service.setNotificationsEnabled(true);
        QVERIFY(press(program.root(), u"Settings"_s));
        QVERIFY(press(program.root(), u"Reset Onboarding"_s));
        QCOMPARE(program.state().content(), PopoverState::Onboarding);
        QVERIFY(!showsText(program.root(), u"Network Diagnostics"_s)); // not below the introduction
        QVERIFY(service.notificationsEnabled());
        for (const auto& key :
            {u"netvane.onboarding.completed"_s, u"networkNotificationsEnabled"_s})
            QVERIFY(!program.defaults.values.contains(key));
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestProgramViews)
#include "test_program_views.moc"
