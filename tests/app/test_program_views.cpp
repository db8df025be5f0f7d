#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "program_world.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "support/view_fixture.h"

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
    if (item.isVisible() && item.inherits(type) && item.property("text") == text)
        return &item;
    for (auto* child : item.childItems()) {
        if (auto* found = find(*child, type, text))
            return found;
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
        const auto lines = [this] { return m_log.take().filter(u"PopoverView:"_s); };
        QCOMPARE(program.state().updateCount(), 1);
        program.link(kHome);
        QVERIFY(!showsText(program.root(), u"Home"_s));
        program.clock->advance(10s);
        QVERIFY(showsText(program.root(), u"Home"_s));
        const auto first = lines();
        QVERIFY2(first.join(u'\n').endsWith(u"#2 took 0.00ms, changes: wifi, error"_s),
            qPrintable(first.join(u'\n')));

        auto other = kHome;
        other.noiseDbm = -70; // not shown
        program.link(other);
        program.clock->advance(70s);
        QCOMPARE(program.state().updateCount(), 9);
        QCOMPARE(lines(), QStringList());
        program.clock->advance(10s);
        QCOMPARE(lines().size(), 1); // each tenth update, even without changes

        program.click();
        QVERIFY(!program.popover().isShown());
        other.signalDbm = -85;
        program.link(other);
        program.clock->advance(60s);
        QCOMPARE(program.state().updateCount(), 10);
        program.click();
        QCOMPARE(program.state().updateCount(), 11);
        QVERIFY(showsText(program.root(), u"-85 dBm"_s));
    }

    void escapeLeavesTheSettingsFirst()
    {
        Program program;
        QVERIFY(press(program.root(), u"Settings"_s));
        QVERIFY(press(program.root(), u"Back"_s));
        QCOMPARE(program.state().content(), PopoverState::Dashboard);
        QVERIFY(press(program.root(), u"Settings"_s));
        program.key(Qt::Key_Escape);
        QCOMPARE(program.state().content(), PopoverState::Dashboard);
        QVERIFY(program.popover().isShown());
        program.key(Qt::Key_Escape);
        QVERIFY(!program.popover().isShown());

        auto& window = program.windowRoot();
        program.link(kHome);
        program.clock->advance(5s);
        QVERIFY(showsText(window, u"Home"_s));
        QVERIFY(press(window, u"Settings"_s));
        QVERIFY(control(window, u"Back"_s));
        program.key(Qt::Key_Escape);
        QVERIFY(!control(window, u"Back"_s));
        QVERIFY(program.delegate->windowController()->isWindowVisible());
    }

    void settingsCards()
    {
        Program program;
        program.link(kHome);
        auto& root = program.root();
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(!control(root, u"Open Settings"_s));
        QVERIFY(!control(root, u"Grant Permission"_s));
        QVERIFY(press(root, u"Network Changes"_s));
        QVERIFY(program.delegate->networkNotificationService()->notificationsEnabled());
        QVERIFY(control(root, u"Grant Permission"_s));
        program.notifications.tellSettings(platform::NotificationAuthorization::Authorized);
        QVERIFY(!control(root, u"Grant Permission"_s));
        QVERIFY(showsText(root, u"Permission Granted"_s));

        for (const auto& button : {u"Export Report"_s, u"Save to File..."_s}) {
            program.savePanel.fileName.clear();
            QVERIFY(press(root, button));
            QVERIFY(!program.savePanel.fileName.isEmpty());
        }
        for (const auto& button : {u"Copy to Clipboard"_s, u"Share..."_s, u"Check for Updates"_s})
            QVERIFY(press(root, button));
        QVERIFY(program.clipboard.text.contains(u"Home"_s));
        QCOMPARE(program.sharePicker.text, program.clipboard.text);
        QVERIFY(!program.state().settings()->updateAnswer().isEmpty());

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
        QVERIFY(service.notificationsEnabled());
        for (const auto& key :
            {u"netvane.onboarding.completed"_s, u"networkNotificationsEnabled"_s})
            QVERIFY(!program.defaults.values.contains(key));
    }

    /// And nothing is cut or nameless.
    void everyControlIsReachedInReadingOrder()
    {
        for (const auto& [content, atLeast] :
            {std::pair(u"dashboard"_s, 5), {u"settings"_s, 8}, {u"onboarding"_s, 1}}) {
            const bool isSettings = content == u"settings"_s;
            Program program(content != u"onboarding"_s);
            program.link(kHome);
            program.clock->advance(10s);
            program.state().setShowSettings(isSettings);
            auto& root = program.root();
            (void)root.window()->grabWindow(); // laid out by a frame
            QCOMPARE(test::auditView(root).join(u'\n'), QString());
            QString names;
            double last = -1e6;
            const auto chain = test::tabChain(root);
            for (auto* item : chain) {
                names += test::describe(*item) + u" > "_s;
                // Relative to the content, which scrolls along with the focus.
                const double y = item->mapToItem(root.findChild<QQuickItem*>(content), {0, 0}).y();
                QVERIFY2(item->isVisible() && (isSettings || y > last - item->height()),
                    qPrintable(names));
                last = y;
            }
            QVERIFY2(chain.size() >= atLeast, qPrintable(names));
        }
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestProgramViews)
#include "test_program_views.moc"
