#include "insights/network_notification_service.h"
#include "insights/onboarding_service.h"
#include "program_world.h"
#include "support/captured_log.h"
#include "support/test_main.h"
#include "support/view_audit.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <netdb.h>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane::test;
using Status = platform::AuthorizationStatus;

class TestProgramViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log.take(); }

    void looksForNewsWhileItIsOpen()
    {
        Program program;
        const auto lines = [this] { return m_log.take().filter(u"PopoverView:"_s); };
        QCOMPARE(program.state().updateCount(), 1);
        program.link(kHome);
        QVERIFY(!texts(program.root()).contains(u"Home"_s));
        program.clock->advance(10s);
        QVERIFY(texts(program.root()).contains(u"Home"_s));
        const auto first = lines();
        QVERIFY(!first.isEmpty());
        QVERIFY2(first.last().endsWith(u"#2 took 0.00ms, changes: wifi, error"_s),
            qPrintable(first.join(u'\n')));

        auto other = kHome;
        other.noiseDbm = -70;
        program.link(other);
        program.clock->advance(70s);
        QCOMPARE(program.state().updateCount(), 9);
        QCOMPARE(lines(), QStringList());
        program.clock->advance(10s);
        QCOMPARE(lines().size(), 1); // that nothing changed

        const int timers = program.clock->timerCount();
        program.click();
        QVERIFY(!program.delegate->popover()->isShown());
        QCOMPARE(program.clock->timerCount(), timers - 1);
        other.signalDbm = -85;
        program.link(other);
        program.clock->advance(60s);
        QCOMPARE(program.state().updateCount(), 10);
        program.click();
        QCOMPARE(program.state().updateCount(), 11);
        QVERIFY(texts(program.root()).contains(u"-85 dBm"_s));
    }

    void permissionCardGoesWithTheNextLook()
    {
        Program program;
        program.location->change(Status::NotDetermined);
        auto nameless = kHome;
        nameless.ssid.reset();
        program.link(nameless);
        program.clock->advance(10s);
        QVERIFY(isShown(program.root(), u"location-permission"_s));
        QVERIFY(control(program.root(), u"Request Permission"_s));
        program.location->change(Status::Denied);
        QCoreApplication::processEvents();
        QVERIFY(!control(program.root(), u"Request Permission"_s));
        program.location->change(Status::AuthorizedAlways);
        QCoreApplication::processEvents();
        QVERIFY(isShown(program.root(), u"location-permission"_s));
        program.clock->advance(10s);
        QVERIFY(!isShown(program.root(), u"location-permission"_s));
    }

    void settingsAndBack()
    {
        Program program;
        for (const auto& leave : {u"Back"_s, u""_s}) {
            QVERIFY(press(program.root(), u"Settings"_s));
            QVERIFY(isShown(program.root(), u"settings"_s));
            if (leave.isEmpty())
                program.key(Qt::Key_Escape);
            else
                QVERIFY(press(program.root(), leave));
            QVERIFY(!isShown(program.root(), u"settings"_s));
            QVERIFY(isShown(program.root(), u"dashboard"_s));
        }
        QVERIFY(program.delegate->popover()->isShown());
        program.key(Qt::Key_Escape);
        QVERIFY(!program.delegate->popover()->isShown());
    }

    void settingsCards()
    {
        Program program;
        auto& root = program.root();
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(!control(root, u"Open Settings"_s));
        QVERIFY(!control(root, u"Grant Permission"_s));
        program.state().goBack();
        program.location->change(Status::Denied);
        QCoreApplication::processEvents();
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(press(root, u"Open Settings"_s));
        QCOMPARE(static_cast<simulated::UrlOpener&>(*program.platform.urlOpener).opened,
            QList<QUrl>({platform::kPrivacySettingsUrl}));
        QVERIFY(press(root, u"Check for Updates"_s));
        QVERIFY(!program.state().settings()->updateAnswer().isEmpty());

        QVERIFY(press(root, u"Network Changes"_s));
        QVERIFY(program.delegate->networkNotificationService()->notificationsEnabled());
        QVERIFY(control(root, u"Grant Permission"_s));
        program.userNotifications->tellSettings(platform::NotificationAuthorization::Authorized);
        QVERIFY(!control(root, u"Grant Permission"_s));
        QVERIFY(texts(root).contains(u"Permission Granted"_s));
    }

    void settingsExportTheReport()
    {
        Program program;
        program.link(kHome);
        auto& root = program.root();
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(press(root, u"Copy to Clipboard"_s));
        const auto copied = static_cast<simulated::Clipboard&>(*program.platform.clipboard).text;
        QVERIFY(copied.contains(u"Home"_s));
        QVERIFY(press(root, u"Share..."_s));
        QCOMPARE(static_cast<simulated::SharePicker&>(*program.platform.sharePicker).text, copied);
        auto& panel = static_cast<simulated::SavePanel&>(*program.platform.savePanel);
        for (const auto& button : {u"Export Report"_s, u"Save to File..."_s}) {
            panel.fileName.clear();
            QVERIFY(press(root, button));
            QVERIFY(!panel.fileName.isEmpty());
        }
    }

    void resettingTheIntroduction()
    {
        Program program;
        auto& service = *program.delegate->networkNotificationService();
        service.setNotificationsEnabled(true);
        QVERIFY(press(program.root(), u"Settings"_s));
        QVERIFY(press(program.root(), u"Reset Onboarding"_s));
        QVERIFY(isShown(program.root(), u"onboarding"_s));
        QVERIFY(!isShown(program.root(), u"settings"_s));
        QVERIFY(service.notificationsEnabled());
        for (const auto& key :
            {u"netvane.onboarding.completed"_s, u"networkNotificationsEnabled"_s})
            QVERIFY(!program.defaults->values.contains(key));
        program.delegate->onboardingService()->setIsCompleted(true);
        QVERIFY(isShown(program.root(), u"settings"_s)); // as they were left
    }

    void introductionFirst()
    {
        Program program(false);
        QVERIFY(isShown(program.root(), u"onboarding"_s));
        QVERIFY(!isShown(program.root(), u"dashboard"_s));
        QCOMPARE(program.state().updateCount(), 0);
        program.delegate->onboardingService()->setIsCompleted(true);
        QTRY_VERIFY(isShown(program.root(), u"dashboard"_s));
        QCOMPARE(program.state().updateCount(), 1);
    }

    void detailedWindow()
    {
        Program program;
        auto& root = program.windowRoot();
        program.link(kHome);
        program.clock->advance(5s);
        QVERIFY(texts(root).contains(u"Home"_s));
        auto weak = kHome;
        weak.signalDbm = -86;
        program.link(weak);
        program.clock->advance(5s);
        QVERIFY(texts(root).contains(u"-86 dBm"_s));
        QVERIFY(press(root, u"Settings"_s));
        QVERIFY(isShown(root, u"settings"_s));
        program.key(Qt::Key_Escape);
        QVERIFY(!isShown(root, u"settings"_s));
        QVERIFY(program.delegate->windowController()->isWindowVisible());
    }

    /// Not one frame is painted for readings that are as they were.
    void nothingNewPaintsNothing()
    {
        Program program;
        const auto pass = [&](int seconds) {
            for (int second = 0; second < seconds; ++second) {
                program.clock->advance(1s);
                program.settle();
            }
        };
        program.link(kHome);
        pass(20);
        // A lookup lasts a real and always different time; from here on there is none.
        static_cast<simulated::Resolver&>(*program.platform.resolver).status = EAI_FAIL;
        pass(10);
        auto* window = program.root().window();
        QSignalSpy frames(window, &QQuickWindow::frameSwapped);
        window->update();
        QTRY_VERIFY(!frames.isEmpty()); // with what was still to be painted
        frames.clear();
        pass(60);
        QTest::qWait(50); // a frame that was asked for would come
        QCOMPARE(frames.size(), 0);
    }

    void everyControlIsReachedInReadingOrder_data()
    {
        QTest::addColumn<bool>("isIntroduced");
        QTest::addColumn<bool>("showsSettings");
        QTest::addColumn<int>("atLeast");
        QTest::newRow("dashboard") << true << false << 5;
        QTest::newRow("settings") << true << true << 8;
        QTest::newRow("introduction") << false << false << 1;
    }
    void everyControlIsReachedInReadingOrder()
    {
        QFETCH(bool, isIntroduced);
        QFETCH(bool, showsSettings);
        Program program(isIntroduced);
        program.link(kHome);
        program.clock->advance(10s);
        program.state().setShowSettings(showsSettings);
        const auto chain = test::tabChain(program.root());
        QStringList names;
        QPointF last(0, -1e6);
        for (auto* item : chain) {
            names.append(test::describe(*item));
            QVERIFY2(item->isVisible(), qPrintable(names.last()));
            // Relative to the content, which scrolls along with the focus.
            const auto* content = program.root().findChild<QQuickItem*>(
                showsSettings ? u"settings"_s : u"dashboard"_s);
            const QPointF at = item->mapToItem(isIntroduced ? content : &program.root(), {0, 0});
            QVERIFY2(showsSettings || at.y() > last.y() - item->height(),
                qPrintable(names.join(u" > "_s)));
            last = at;
        }
        QFETCH(int, atLeast);
        QVERIFY2(names.size() >= atLeast, qPrintable(names.join(u" > "_s)));
    }

    void nothingIsCutOrNameless()
    {
        Program program;
        program.link(kHome);
        program.clock->advance(10s);
        // Laid out by a frame.
        (void)program.root().window()->grabWindow();
        QCOMPARE(test::auditView(program.root()).join(u'\n'), QString());
        program.state().setShowSettings(true);
        (void)program.root().window()->grabWindow();
        QCOMPARE(test::auditView(program.root()).join(u'\n'), QString());
        auto& root = program.windowRoot();
        (void)root.window()->grabWindow();
        QCOMPARE(test::auditView(root).join(u'\n'), QString());
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestProgramViews)
#include "test_program_views.moc"
